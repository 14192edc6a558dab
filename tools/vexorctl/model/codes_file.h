// A file that describes the codes of a controller: docs/vexorctl-codes.schema.json is its schema.
#pragma once

#include <deque>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "codes/code_table.h"
#include "codes/named.h"

namespace vexorctl {

/// The text is not a valid file of codes; what() says where and why.
struct CodesFileError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class CodesFile {
public:
    /// Reads the text. Throws CodesFileError.
    explicit CodesFile(const std::string& text);
    CodesFile(const CodesFile&) = delete;
    CodesFile& operator=(const CodesFile&) = delete;

    /// The controller that it is for, as HX_API_Version names it; empty: any.
    const std::string& controller() const { return controller_; }
    const hxcodes::CodeTable& table() const { return table_; }

private:
    std::string_view Keep(std::string text);

    std::string controller_;
    std::deque<std::string> texts_;                  // what the rows view
    std::deque<std::vector<hxcodes::Named>> lists_;  // what the table spans
    std::vector<hxcodes::RefusalText> refusals_;
    hxcodes::CodeTable table_;
};

/// The JSON schema of such a file.
std::string CodesFileSchema();

}  // namespace vexorctl
