// A flag that tells whether a call is inside: set for the time of a block, however the block ends.
#pragma once

namespace hxlibrary {

class SetWhileInside {
public:
    explicit SetWhileInside(bool& flag) : flag_(flag) { flag_ = true; }
    ~SetWhileInside() { flag_ = false; }
    SetWhileInside(const SetWhileInside&) = delete;
    SetWhileInside& operator=(const SetWhileInside&) = delete;

private:
    bool& flag_;
};

}  // namespace hxlibrary
