// vexorctl: the command line of the library.
#include <cstring>
#include <exception>
#include <new>
#include <string>

#include "common/out_of_memory.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/library_session.h"
#include "nouns/nouns.h"
#include "output/streams.h"
#include "shell/command_line.h"

namespace vexorctl {

namespace {

// A monitoring system takes exit code 3 for "unknown" and any other above 2 for a fault of its own.
// Memory may run out in static objects already, which are made before main.
[[gnu::constructor(102)]] void NoteThePlugin(int argc, char** argv) {
    if (argc > 1 && std::strcmp(argv[1], "check") == 0) {
        vexortools::EndWithoutMemoryBy("UNKNOWN: not enough memory\n", 3);
    }
}

Exit Fail(Exit exit, const std::string& subject, const std::string& message) {
    ReportFailure(subject, message);
    return exit;
}

Exit RunReportingFailure(int argc, const char* const* argv) {
    try {
        return RunCommandLine(Nouns(), argc, argv);
    } catch (const UsageError& failure) {
        return Fail(Exit::kUsage, "", failure.what());
    } catch (const Failure& failure) {
        return Fail(failure.exit, "", failure.what());
    } catch (const Unavailable& failure) {
        return Fail(Exit::kUnavailable, failure.subject, failure.what());
    } catch (const OutputError& failure) {
        return Fail(Exit::kUnavailable, "standard output", failure.what());
    } catch (const std::bad_alloc&) {
        vexortools::EndWithoutMemory();
    } catch (const std::exception& failure) {
        return Fail(Exit::kUnavailable, "", failure.what());
    }
}

}  // namespace

}  // namespace vexorctl

int main(int argc, char** argv) {
    return vexorctl::CodeOf(vexorctl::RunReportingFailure(argc, argv));
}
