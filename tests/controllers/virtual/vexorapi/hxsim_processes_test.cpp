// One machine, several processes: the event service checks events in while a client creates and
// deletes virtual disks, and both work on the same state file.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <string>

#include "model/hxsim_invariants.h"
#include "model/hxsim_machine.h"
#include "store/hxsim_store.h"
#include "support/child_process.h"
#include "support/request.h"
#include "support/temporary_root.h"
#include "topology/hxsim_topology.h"

namespace {

// Each goes on until both have done so much; a sanitized build is slower at it, not more likely to
// show a fault.
constexpr int kRounds = kSanitized ? 200 : 1000;

class OneMachine : public testing::Test {
protected:
    OneMachine() {
        std::filesystem::create_directories(root_.Path("/opt/kestrel/raid/db"));
        setenv("HXSIM_STATE", root_.Path("/hxsim.db").c_str(), 1);
    }

    std::string State() const { return root_.Path("/hxsim.db"); }

    TemporaryRoot root_;
};

// What the two processes tell each other.
struct Rounds {
    std::atomic<int> service, client;
    std::atomic<bool> failed;  // one has ended: the other need not wait for it
};

// Does `once`, and counts it, until both have done enough; ends the process with 0, or with 1 when
// `once` fails.
template <class Once>
[[noreturn]] void Repeat(const Rounds& rounds, std::atomic<int>& done, Once once) {
    vexorApiInit();
    bool ok = true;
    while (ok && !rounds.failed && (rounds.service < kRounds || rounds.client < kRounds)) {
        ok = once();
        ++done;
    }
    vexorApiShutdown();
    _exit(ok ? 0 : 1);
}

bool Succeeds(const std::string& command) {
    const std::string result = Send(command).text;
    if (result.find("<RetVal type=\"U8\">0<") != std::string::npos) return true;
    std::fprintf(stderr, "%s\n%s\n", command.c_str(), result.c_str());
    return false;
}

bool CheckIn() {
    VX_EvFile_CheckIn(2);
    return true;
}

bool CreateAndDelete() {
    // 1 is the lowest number that no virtual disk of a new machine has.
    return Succeeds(
               "<HX_LD_Create type=\"function\"><AdapterID>0</AdapterID><RaidMode>1</RaidMode>"
               "<HDCount>2</HDCount><HDIDs>11 12</HDIDs><StripeBlockSize>64</StripeBlockSize>"
               "<SectorCoefficient>1</SectorCoefficient><Size>2097152</Size><Name>COMES</Name>"
               "</HX_LD_Create>") &&
           Succeeds(
               "<HX_LD_Delete type=\"function\"><AdapterID>0</AdapterID><LD_ID>1</LD_ID>"
               "</HX_LD_Delete>");
}

TEST_F(OneMachine, StaysSoundWhileEventsAreTakenAndVirtualDisksComeAndGo) {
    hxsim::Store(State(), hxsim::DefaultMachine).Current();  // both find the machine made

    Rounds& rounds = *new (mmap(nullptr, sizeof(Rounds), PROT_READ | PROT_WRITE,
                                MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Rounds{};
    const pid_t service = fork();
    if (service == 0) Repeat(rounds, rounds.service, CheckIn);
    ASSERT_GT(service, 0);
    const pid_t client = fork();
    if (client == 0) Repeat(rounds, rounds.client, CreateAndDelete);
    ASSERT_GT(client, 0);
    for (int ended = 0; ended < 2; ++ended) {
        int status = 0;
        const pid_t child = waitpid(-1, &status, 0);
        ASSERT_GT(child, 0);
        const bool ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
        if (!ok) rounds.failed = true;
        EXPECT_TRUE(ok) << (child == service ? "the event service" : "the client")
                        << " failed: " << status;
    }
    munmap(&rounds, sizeof(Rounds));

    const std::vector<std::string> broken =
        hxsim::Check(hxsim::Store(State(), hxsim::DefaultMachine).Current());
    EXPECT_TRUE(broken.empty()) << broken.front();
}

TEST_F(OneMachine, IsWholeAfterItsClientWasKilledAtAnyTime) {
    hxsim::Store(State(), hxsim::DefaultMachine).Current();
    for (int kill_number = 0; kill_number < 200; ++kill_number) {
        const pid_t client = fork();
        if (client == 0) {
            vexorApiInit();
            // What the killed one before has left may be there already.
            while (true) {
                Send(
                    "<HX_LD_Create type=\"function\"><AdapterID>0</AdapterID>"
                    "<RaidMode>1</RaidMode><HDCount>2</HDCount><HDIDs>11 12</HDIDs>"
                    "<SectorCoefficient>1</SectorCoefficient><Size>2097152</Size>"
                    "</HX_LD_Create>");
                Send(
                    "<HX_LD_Delete type=\"function\"><AdapterID>0</AdapterID><LD_ID>1</LD_ID>"
                    "</HX_LD_Delete>");
            }
        }
        ASSERT_GT(client, 0);
        // Before it has opened the file, and at ever later moments of its work.
        usleep(static_cast<useconds_t>(kill_number * 150));
        kill(client, SIGKILL);
        ASSERT_EQ(waitpid(client, nullptr, 0), client);

        const std::vector<std::string> broken =
            hxsim::Check(hxsim::Store(State(), hxsim::DefaultMachine).Current());
        ASSERT_TRUE(broken.empty()) << "after kill " << kill_number << ": " << broken.front();
    }
}

}  // namespace
