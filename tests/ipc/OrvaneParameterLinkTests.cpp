// SPDX-License-Identifier: GPL-3.0-or-later
// Both ends over the real segment.
#include "ipc/HeadRotation.h"
#include "ipc/OrvaneParameterFactory.h"
#include "support/RealtimeScope.h"

#include <boost/interprocess/managed_shared_memory.hpp>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <thread>
#include <vector>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace interprocess = boost::interprocess;
using orvane::HeadRotationMatrix;
using OrvaneIPC::HeadRotation;
using OrvaneIPC::OrvaneParameterFactory;

constexpr const char* name =
    "OrvaneSharedMemory"; // spelled out: the other process has no access to our constants

HeadRotationMatrix filledWith(float value) {
    HeadRotationMatrix matrix;
    matrix.fill(value);
    return matrix;
}

class OrvaneParameterLink : public ::testing::Test {
public:
    OrvaneParameterLink() { interprocess::shared_memory_object::remove(name); }
    ~OrvaneParameterLink() override { interprocess::shared_memory_object::remove(name); }

protected:
    OrvaneParameterFactory factory;
};

TEST_F(OrvaneParameterLink, WithoutASegmentTheClientIsUnconnectedInactiveAndUnturned) {
    const auto client = factory.createClient();
    ASSERT_NE(client, nullptr);
    EXPECT_FALSE(client->isConnected());
    EXPECT_FALSE(client->getHeadRotationClient().isActive());
    EXPECT_EQ(client->getHeadRotationClient().getRotation(), orvane::identityRotation);
}

TEST_F(OrvaneParameterLink, ASegmentWithoutTheRecordConnectsAndReadsAsEmpty) {
    const interprocess::managed_shared_memory segment(interprocess::create_only, name, 65536);
    const auto client = factory.createClient();
    EXPECT_TRUE(client->isConnected());
    EXPECT_FALSE(client->getHeadRotationClient().isActive());
    EXPECT_EQ(client->getHeadRotationClient().getRotation(), orvane::identityRotation);
}

TEST_F(OrvaneParameterLink, UnconnectedClientsShareOneEmptyRotation) {
    const auto one = factory.createClient();
    const auto other = factory.createClient();
    EXPECT_EQ(&one->getHeadRotationClient(), &other->getHeadRotationClient());
    const interprocess::managed_shared_memory segment(interprocess::create_only, name, 65536);
    EXPECT_EQ(&factory.createClient()->getHeadRotationClient(), &one->getHeadRotationClient());
}

TEST_F(OrvaneParameterLink, AFreshServerIsInactiveAndUnturned) {
    const auto server = factory.createServer();
    const auto client = factory.createClient();
    EXPECT_TRUE(client->isConnected());
    EXPECT_FALSE(client->getHeadRotationClient().isActive());
    EXPECT_EQ(client->getHeadRotationClient().getRotation(), orvane::identityRotation);
}

// Expected values: the wire format, looked at as any other program would.
TEST_F(OrvaneParameterLink, TheSegmentHas65536BytesAndOneRecordByName) {
    const auto server = factory.createServer();
    server->getHeadRotationServer()->setActive(true);
    server->getHeadRotationServer()->setRotation(filledWith(7));
    interprocess::managed_shared_memory segment(interprocess::open_only, name);
    EXPECT_EQ(segment.get_size(), 65536u);
    EXPECT_EQ(segment.get_num_named_objects(), 1u);
    const auto [record, count] = segment.find<HeadRotation::Data>("HeadRotation");
    ASSERT_EQ(count, 1u);
    EXPECT_EQ(record->active, 1);
    EXPECT_EQ(record->lock, 0u);
    EXPECT_EQ(record->rotation[15], 7.0f);
}

TEST_F(OrvaneParameterLink, EveryClientFollowsTheServer) {
    const auto server = factory.createServer();
    const auto one = factory.createClient();
    const auto other = factory.createClient();
    server->getHeadRotationServer()->setActive(true);
    EXPECT_EQ(one->getHeadRotationClient().getRotation(), orvane::identityRotation); // no matrix yet
    server->getHeadRotationServer()->setRotation(filledWith(3));
    for (const auto* client : {&one, &other}) {
        EXPECT_TRUE((*client)->getHeadRotationClient().isActive());
        EXPECT_EQ((*client)->getHeadRotationClient().getRotation(), filledWith(3));
    }
    server->getHeadRotationServer()->setActive(false);
    EXPECT_FALSE(one->getHeadRotationClient().isActive());
}

TEST_F(OrvaneParameterLink, AServerThatStartsLaterIsNeverSeen) {
    const auto client = factory.createClient();
    const auto server = factory.createServer();
    server->getHeadRotationServer()->setActive(true);
    EXPECT_FALSE(client->isConnected());
    EXPECT_FALSE(client->getHeadRotationClient().isActive());
}

TEST_F(OrvaneParameterLink, AClientKeepsTheLastValuesOfAServerThatIsGone) {
    auto server = factory.createServer();
    const auto client = factory.createClient();
    server->getHeadRotationServer()->setRotation(filledWith(4));
    server->getHeadRotationServer()->setActive(true);
    server.reset();
    EXPECT_TRUE(client->isConnected());
    EXPECT_TRUE(client->getHeadRotationClient().isActive());
    EXPECT_EQ(client->getHeadRotationClient().getRotation(), filledWith(4));
    EXPECT_FALSE(factory.createClient()->isConnected()); // the name is gone
}

TEST_F(OrvaneParameterLink, ASecondServerTakesTheNameAndTheFirstWritesOnUnseenByNewClients) {
    auto first = factory.createServer();
    const auto early = factory.createClient();
    const auto second = factory.createServer();
    const auto late = factory.createClient();
    first->getHeadRotationServer()->setRotation(filledWith(1));
    second->getHeadRotationServer()->setRotation(filledWith(2));
    EXPECT_EQ(early->getHeadRotationClient().getRotation(), filledWith(1));
    EXPECT_EQ(late->getHeadRotationClient().getRotation(), filledWith(2));
    // The first one's end frees the name, though it stands for the second one's segment by now.
    first.reset();
    EXPECT_FALSE(factory.createClient()->isConnected());
    EXPECT_EQ(late->getHeadRotationClient().getRotation(), filledWith(2));
}

TEST_F(OrvaneParameterLink, AServerReplacesWhateverHasTheName) {
    { const interprocess::managed_shared_memory foreign(interprocess::create_only, name, 4096); }
    const auto server = factory.createServer();
    interprocess::managed_shared_memory segment(interprocess::open_only, name);
    EXPECT_EQ(segment.get_size(), 65536u);
    EXPECT_EQ(segment.get_num_named_objects(), 1u);
}

TEST_F(OrvaneParameterLink, WhereNoSegmentCanBeMadeTheServerThrowsAndTheClientDoesNot) {
    const std::filesystem::path obstacle =
        std::filesystem::path("/dev/shm") / name; // a folder, not removable as a segment
    std::filesystem::create_directory(obstacle);
    EXPECT_THROW(factory.createServer(), interprocess::interprocess_exception);
    EXPECT_FALSE(factory.createClient()->isConnected());
    std::filesystem::remove(obstacle);
}

TEST_F(OrvaneParameterLink, TheFirstLookOfAClientNeitherAllocatesNorLocks) {
    for (const bool served : {false, true}) {
        const auto server = served ? factory.createServer() : nullptr;
        const auto client = factory.createClient();
        const test::RealtimeScope scope;
        const bool active = client->getHeadRotationClient().isActive();
        const HeadRotationMatrix matrix = client->getHeadRotationClient().getRotation();
        EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
        EXPECT_FALSE(active);
        EXPECT_EQ(matrix, orvane::identityRotation);
    }
}

/// One end of the link in a process of its own, with a pipe each way to take turns.
class OtherProcess {
public:
    explicit OtherProcess(const std::function<void(OtherProcess&)>& run) {
        if (pipe(down.data()) != 0 || pipe(up.data()) != 0)
            throw std::runtime_error("no pipe");
        id = fork();
        if (id != 0)
            return;
        mine = up[1];
        theirs = down[0];
        int status = 0;
        try {
            run(*this);
        } catch (...) {
            status = 1;
        }
        _exit(status);
    }
    ~OtherProcess() {
        if (id > 0) {
            kill(id, SIGKILL);
            waitpid(id, nullptr, 0);
        }
        for (const int end : {down[0], down[1], up[0], up[1]})
            close(end);
    }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    /// Tells the other side to go on, from either side.
    void tell() const {
        const char turn = 't';
        if (write(id == 0 ? mine : down[1], &turn, 1) != 1)
            throw std::runtime_error("the pipe broke");
    }

    /// Waits for the other side's tell().
    void await() const {
        char turn = 0;
        if (read(id == 0 ? theirs : up[0], &turn, 1) != 1)
            throw std::runtime_error("the pipe broke");
    }

    /// Ends the process as a crash does.
    void crash() {
        kill(id, SIGKILL);
        waitpid(id, nullptr, 0);
        id = -1;
    }

    /// @return the exit status of a process that ended by itself.
    int join() {
        int status = -1;
        waitpid(id, &status, 0);
        id = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    std::array<int, 2> down{-1, -1};
    std::array<int, 2> up{-1, -1};
    int mine = -1;
    int theirs = -1;
    pid_t id = -1;
};

TEST_F(OrvaneParameterLink, ATrackerInAnotherProcessTurnsTheHead) {
    OtherProcess tracker([](OtherProcess& here) {
        OrvaneParameterFactory trackerFactory;
        const auto server = trackerFactory.createServer();
        server->getHeadRotationServer()->setRotation(filledWith(6));
        server->getHeadRotationServer()->setActive(true);
        here.tell();
        here.await();
        server->getHeadRotationServer()->setRotation(filledWith(8));
        here.tell();
        here.await();
        server->getHeadRotationServer()->setActive(false);
    });
    tracker.await();
    const auto client = factory.createClient();
    ASSERT_TRUE(client->isConnected());
    EXPECT_TRUE(client->getHeadRotationClient().isActive());
    EXPECT_EQ(client->getHeadRotationClient().getRotation(), filledWith(6));
    tracker.tell();
    tracker.await();
    EXPECT_EQ(client->getHeadRotationClient().getRotation(), filledWith(8));
    tracker.tell();
    EXPECT_EQ(tracker.join(), 0);
    EXPECT_FALSE(client->getHeadRotationClient().isActive());
    EXPECT_FALSE(factory.createClient()->isConnected());
}

TEST_F(OrvaneParameterLink, TheSegmentOutlivesACrashedTrackerUntilTheNextOneStarts) {
    OtherProcess tracker([](OtherProcess& here) {
        OrvaneParameterFactory trackerFactory;
        const auto server = trackerFactory.createServer();
        server->getHeadRotationServer()->setRotation(filledWith(5));
        server->getHeadRotationServer()->setActive(true);
        here.tell();
        here.await();
    });
    tracker.await();
    tracker.crash();
    const auto client = factory.createClient();
    EXPECT_TRUE(client->getHeadRotationClient().isActive());
    EXPECT_EQ(client->getHeadRotationClient().getRotation(), filledWith(5));

    const auto next = factory.createServer();
    EXPECT_FALSE(factory.createClient()->getHeadRotationClient().isActive());
    EXPECT_TRUE(client->getHeadRotationClient().isActive()); // still on the old mapping
}

TEST_F(OrvaneParameterLink, ReadersNeverSeeATornMatrixOfAnotherProcess) {
    constexpr int matrices = 50000;
    OtherProcess tracker([](OtherProcess& here) {
        OrvaneParameterFactory trackerFactory;
        const auto server = trackerFactory.createServer();
        server->getHeadRotationServer()->setRotation(filledWith(0));
        server->getHeadRotationServer()->setActive(true);
        here.tell();
        here.await();
        for (int count = 1; count <= matrices; ++count)
            server->getHeadRotationServer()->setRotation(filledWith(static_cast<float>(count)));
        server->getHeadRotationServer()->setActive(false);
    });
    tracker.await();
    const auto client = factory.createClient();
    ASSERT_TRUE(client->isConnected());
    std::atomic<int> torn{0};
    std::atomic<int> backward{0};
    std::vector<std::thread> readers;
    readers.reserve(2);
    for (int reader = 0; reader < 2; ++reader)
        readers.emplace_back([&] {
            float last = 0;
            for (bool running = true; running;) {
                running = client->getHeadRotationClient().isActive();
                const HeadRotationMatrix matrix = client->getHeadRotationClient().getRotation();
                if (matrix != filledWith(matrix[0]))
                    torn = torn + 1;
                if (matrix[0] < last)
                    backward = backward + 1;
                last = matrix[0];
            }
        });
    tracker.tell();
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ(tracker.join(), 0);
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(backward, 0);
    EXPECT_EQ(client->getHeadRotationClient().getRotation(), filledWith(static_cast<float>(matrices)));
}

} // namespace
