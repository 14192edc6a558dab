// What went wrong with one object while the others were served.
#pragma once

#include <cstdint>
#include <string>

namespace vexorctl {

struct Fault {
    std::string address{};   // what it is about; may be empty
    std::string function{};  // of the library; may be empty
    std::uint64_t code = 0;  // the controller's, 0 when it is none
    std::string name{};
    std::string message{};
};

}  // namespace vexorctl
