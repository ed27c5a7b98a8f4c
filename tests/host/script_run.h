// Script text run through the host, with the fixture libraries' folder as
// ZELCLS_PATHS for every test of the executable, and a class looked up by name.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include "host/host_api.h"

namespace hosttest {

struct FixturePaths : ::testing::Environment {
    void SetUp() override { setenv("ZELCLS_PATHS", ZEL_FIXTURE_DIR, 1); }
};
inline const auto* g_fixturePaths = ::testing::AddGlobalTestEnvironment(new FixturePaths);

struct ScriptRun { int status; std::string out, err; };

// Runs the text as the script t.zs.
inline ScriptRun RunText(const std::string& script, bool audit = false) {
    std::istringstream in(script);
    std::ostringstream out, err;
    zelhost::RunOptions o;
    o.audit = audit;
    int s = zelhost::RunScript(in, "t.zs", o, out, err);
    return {s, out.str(), err.str()};
}

// The class of that name, loading its library; a failure fails the test.
inline zelhost::ClassInfo* Cls(const wchar_t* name) {
    std::string e;
    zelhost::ClassInfo* c = zelhost::FindClass(name, &e);
    EXPECT_NE(c, nullptr) << e;
    return c;
}

}  // namespace hosttest
