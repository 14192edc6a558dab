// The XML format.
#pragma once

#include <string>

#include "output/cell_text.h"
#include "output/report.h"

namespace vexorctl {

/// The whole report: <vexorctl schema="vexorctl/1" command="..."> with an <item> for each row and
/// an <error> for each fault.
std::string XmlDocument(const Report& report, const Style& style);

}  // namespace vexorctl
