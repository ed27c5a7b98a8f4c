// `ncl repl`: the script language one line at a time.
#pragma once

#include <iosfwd>
#include <vector>

#include "host/host_api.h"

namespace ncl {

// Reads lines from standard input until end of input or :quit. On a terminal
// it prompts, and edits lines with history and completion when libedit is
// installed; otherwise it reads plain lines without a prompt.
int RunRepl(const std::vector<zelhost::Library*>& libraries, std::ostream& out, std::ostream& err);

}  // namespace ncl
