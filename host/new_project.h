// ncl new: the skeleton of a class library built against the installed SDK.
#pragma once

#include <iosfwd>
#include <string>

namespace ncl {
// Writes the project of the library NAMESPACE into DIR (created; it must not
// hold files yet). 0 on success, 1 with a message on err otherwise.
int NewProject(const std::string& nameSpace, const std::string& dir, std::ostream& out, std::ostream& err);
}  // namespace ncl
