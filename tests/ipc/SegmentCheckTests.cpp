// SPDX-License-Identifier: GPL-3.0-or-later
// Expected values: what the segment's own library finds in the same bytes.
#include "ipc/SegmentCheck.h"

#include "SegmentFile.h"

#include "ipc/HeadRotation.h"
#include "support/WatchedProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

namespace interprocess = boost::interprocess;
using OrvaneIPC::ProvenSegment;
using OrvaneIPC::proveSegmentCopy;
using Record = OrvaneIPC::HeadRotation::Data;
using How = test::WatchedEnd::How;

std::optional<ProvenSegment> prove(const std::string& bytes) {
    return proveSegmentCopy(test::asBytes(bytes));
}

/// Where the library finds the record of the segment that lies under the name; 0 for none.
std::size_t placeByTheLibrary() {
    interprocess::managed_shared_memory segment(interprocess::open_only, "OrvaneSharedMemory");
    const auto [record, count] = segment.find<Record>("HeadRotation");
    return count == 0 ? 0
                      : static_cast<std::size_t>(reinterpret_cast<const char*>(record) -
                                                 static_cast<const char*>(segment.get_address()));
}

void expectAgreement(const std::string& bytes) {
    const auto proven = prove(bytes);
    ASSERT_TRUE(proven.has_value());
    test::writeSegment(bytes);
    EXPECT_EQ(proven->record.value_or(0), placeByTheLibrary());
    test::removeSegment();
}

std::string overwritten(std::string bytes, std::size_t position, const std::string& with) {
    return bytes.replace(position, with.size(), with);
}

TEST(SegmentCheck, FindsTheRecordOfAServerWhereTheLibraryFindsIt) {
    const std::string served = test::servedSegment();
    expectAgreement(served);
    EXPECT_TRUE(prove(served)->record.has_value());
}

TEST(SegmentOwner, IsTheUserOrRootAndNobodyElseMayWrite) {
    constexpr uid_t user = 1000;
    const auto trusted = [](uid_t owner, mode_t mode) {
        struct stat facts {};
        facts.st_uid = owner;
        facts.st_mode = S_IFREG | mode;
        return OrvaneIPC::isOfTheUsersOwn(facts, user);
    };
    for (const mode_t mode : {0644u, 0600u, 0755u, 0400u}) {
        EXPECT_TRUE(trusted(user, mode)) << mode;
        EXPECT_TRUE(trusted(0, mode)) << mode;
        EXPECT_FALSE(trusted(user + 1, mode)) << mode;
    }
    for (const mode_t mode : {0666u, 0664u, 0646u, 0620u, 0602u, 0777u}) {
        EXPECT_FALSE(trusted(user, mode)) << mode;
        EXPECT_FALSE(trusted(0, mode)) << mode;
    }
}

TEST(SegmentCheck, FindsNoRecordWhereThereIsNone) {
    const std::string empty = test::segmentWith([](auto&) {});
    expectAgreement(empty);
    EXPECT_FALSE(prove(empty)->record.has_value());
}

/// A tracker may keep things of its own beside the record; the tree of names gets several levels.
TEST(SegmentCheck, FindsTheRecordAmongOtherObjects) {
    for (const int others : {1, 2, 3, 10, 100}) {
        const std::string bytes = test::segmentWith([others](auto& segment) {
            for (int object = 0; object < others; ++object)
                segment.template construct<double>(
                    ("object " + std::to_string(object * 7919 % 1000)).c_str())(1.0);
            segment.template construct<Record>("HeadRotation")();
            segment.template construct<char>("HeadRotatio")[500]('x');
            segment.template construct<int>(boost::interprocess::unique_instance)(1);
        });
        expectAgreement(bytes);
        EXPECT_TRUE(prove(bytes)->record.has_value());
    }
}

TEST(SegmentCheck, FindsTheRecordAfterOthersWereRemoved) {
    const std::string bytes = test::segmentWith([](auto& segment) {
        for (int object = 0; object < 20; ++object)
            segment.template construct<double>(std::to_string(object).c_str())(1.0);
        segment.template construct<Record>("HeadRotation")();
        for (int object = 0; object < 20; object += 2)
            segment.template destroy<double>(std::to_string(object).c_str());
    });
    expectAgreement(bytes);
    EXPECT_TRUE(prove(bytes)->record.has_value());
}

TEST(SegmentCheck, ARecordThatIsLockedOrMovesIsARecord) {
    std::string bytes = test::servedSegment();
    const std::size_t record = prove(bytes)->record.value();
    bytes = overwritten(bytes, record, std::string(72, '\x7f'));
    EXPECT_EQ(prove(bytes)->record, record);
}

struct Damage {
    const char* name;
    std::string bytes;
};

/// Positions and meanings as they are measured in a sound segment: the header's words in their order, then the entry.
std::vector<Damage> damages() {
    const std::string sound = test::servedSegment();
    const std::size_t record = prove(sound).value().record.value();
    const std::size_t entry = record - 40;
    const auto word = [](std::int64_t value) {
        std::string text(8, '\0');
        std::memcpy(text.data(), &value, 8);
        return text;
    };
    constexpr std::size_t state = 0, headerBytes = 88, managedBytes = 104, lock = 112, count = 152,
                          root = 160;
    const std::size_t left = entry + 8, valueBytes = entry + 24, nameLength = entry + 32,
                      alignment = entry + 34, type = entry + 35, name = record + 72;
    const auto with = [&](std::size_t position, const std::string& text) {
        return overwritten(sound, position, text);
    };
    const auto away = static_cast<std::int64_t>(root);
    return {
        {"NoBytes", ""},
        {"SixteenBytes", sound.substr(0, 16)},
        {"OneByteShort", sound.substr(0, 65535)},
        {"OneByteLong", sound + '\0'},
        {"Zeros", std::string(65536, '\0')},
        {"Ones", std::string(65536, '\xff')},
        {"NotInitialised", with(state, std::string(4, '\0'))},
        {"Initialising", with(state, std::string("\1\0\0\0", 4))},
        {"Corrupted", with(state, std::string("\3\0\0\0", 4))},
        {"OtherHeaderSize", with(headerBytes, word(112))},
        {"OtherManagedSize", with(managedBytes, word(65536))},
        {"HugeManagedSize", with(managedBytes, word(-1))},
        {"LockHeld", with(lock, std::string("\1\0\0\0", 4))},
        {"LockOfAnotherKind", with(lock + 16, std::string("\2", 1))},
        {"LockOwned", with(lock + 8, std::string("\7\0\0\0", 4))},
        {"NoEntryCounted", with(count, word(0))},
        {"OneEntryTooMany", with(count, word(2))},
        {"CountBeyondTheSegment", with(count, word(-1))},
        {"NoRootForOneEntry", with(root, word(1))},
        {"RootAtTheHeader", with(root, word(-8))},
        {"RootBeforeTheSegment", with(root, word(-away - 8))},
        {"RootBehindTheSegment", with(root, word(65536 - away))},
        {"RootAtTheLastByte", with(root, word(65535 - away))},
        {"RootFarAway", with(root, word(INT64_MAX - 7))},
        {"RootFarBefore", with(root, word(INT64_MIN))},
        {"RootUnaligned", with(root, word(static_cast<std::int64_t>(entry + 4 - root)))},
        {"ChildIsItself", overwritten(with(left, word(-8)), count, word(2))},
        {"ChildOutside", with(left, word(1 << 20))},
        {"ValueOf71Bytes", with(valueBytes, word(71))},
        {"ValueOf144Bytes", with(valueBytes, word(144))},
        {"ValueOfNoBytes", with(valueBytes, word(0))},
        {"ValueBeyondTheSegment", with(valueBytes, word(65536))},
        {"ValueThatOverflows", with(valueBytes, word(-72))},
        {"NameBeyondTheSegment", with(nameLength, std::string("\xff\xff", 2))},
        {"NameWithoutEnd", with(name + 12, "s")},
        {"AlignmentOfNothing", with(alignment, std::string(1, '\0'))},
        {"AlignmentOfThree", with(alignment, "\3")},
        {"OtherAlignment", with(alignment, "\x10")},
        {"AnotherTypeOfEntry", with(type, "\x41")},
        {"WideCharacters", with(type, "\x24")},
    };
}

TEST(SegmentCheck, ProvesNothingDamaged) {
    for (const Damage& damage : damages())
        EXPECT_FALSE(prove(damage.bytes).has_value()) << damage.name;
}

TEST(SegmentCheck, AnotherNameIsASoundSegmentWithoutTheRecord) {
    const std::string sound = test::servedSegment();
    const std::size_t record = prove(sound)->record.value();
    const auto renamed = prove(overwritten(sound, record + 72, "headRotation"));
    ASSERT_TRUE(renamed.has_value());
    EXPECT_FALSE(renamed->record.has_value());
}

TEST(SegmentCheck, RecordsOfOtherSizesAndTwoOfThemAreNotProven) {
    EXPECT_FALSE(prove(test::segmentWith([](auto& segment) {
                     segment.template construct<std::array<std::uint32_t, 17>>("HeadRotation")();
                 })).has_value());
    EXPECT_FALSE(prove(test::segmentWith([](auto& segment) {
                     segment.template construct<Record>("HeadRotation")[2]();
                 })).has_value());
    EXPECT_FALSE(prove(test::segmentWith([](auto& segment) {
                     segment.template construct<std::array<double, 9>>("HeadRotation")();
                 })).has_value());
}

/// Looks into each of the segments as a client did that checks nothing.
test::WatchedEnd openedByTheLibrary(const std::vector<std::string>& segments) {
    return test::watch(
        [&] {
            for (const std::string& bytes : segments) {
                test::writeSegment(bytes);
                if (placeByTheLibrary() != prove(bytes).value().record.value_or(0))
                    return 1;
            }
            return 0;
        },
        std::chrono::seconds(30));
}

/// Property: whatever bit of what the library reads is wrong, the segment is either not proven, or the library, too, opens it
/// without harm and finds the same.
TEST(SegmentCheck, WithAnyOneBitWrongWhatIsProvenIsWhatTheLibraryFinds) {
    const std::string sound = test::servedSegment();
    const std::size_t size = prove(sound)->record.value() + 72 + 16; // to behind the record's name
    std::vector<std::string> proven;
    std::size_t refused = 0;
    for (std::size_t bit = 0; bit < 8 * size; ++bit) {
        std::string bytes = sound;
        bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ (1 << bit % 8));
        if (prove(bytes))
            proven.push_back(std::move(bytes));
        else
            ++refused;
    }
    EXPECT_GT(refused, 500u); // what the check looks at
    const auto end = openedByTheLibrary(proven);
    EXPECT_EQ(end.how, How::returned);
    EXPECT_EQ(end.value, 0);
}

/// Property: noise behind a sound beginning, and noise over parts of it.
TEST(SegmentCheck, SeededDamageIsNotProvenOrHarmlessToTheLibrary) {
    const std::string sound = test::servedSegment();
    const std::size_t size = prove(sound)->record.value() + 72 + 16;
    std::mt19937 random(11); // NOLINT(*-msc51-cpp): the same damage every time
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    std::vector<std::string> proven;
    std::size_t refused = 0;
    for (int round = 0; round < 3000; ++round) {
        std::string bytes = sound;
        const std::size_t from = below(size);
        const std::size_t to = std::min(bytes.size(), from + 1 + below(round % 3 == 0 ? bytes.size() : 16));
        for (std::size_t position = from; position < to; ++position)
            bytes[position] = static_cast<char>(round % 2 == 0 ? random() : below(2) * 0xff);
        if (prove(bytes))
            proven.push_back(std::move(bytes));
        else
            ++refused;
    }
    EXPECT_GT(refused, 300u);
    EXPECT_GT(proven.size(), 30u);
    const auto end = openedByTheLibrary(proven);
    EXPECT_EQ(end.how, How::returned);
    EXPECT_EQ(end.value, 0);
}

/// That the two properties above can fail: a client that trusts the library hangs or crashes on most kinds of damage.
TEST(SegmentCheck, TheLibraryAloneHangsOrCrashesOnDamageThatIsNotProven) {
    const auto endOn = [](const std::string& bytes) {
        test::writeSegment(bytes);
        return test::watch(
                   [] {
                       for (const int crash : {SIGSEGV, SIGBUS})
                           std::signal(crash, SIG_DFL); // a sanitizer's report takes as long as a hang
                       return placeByTheLibrary() == 0 ? 0 : 1;
                   },
                   std::chrono::seconds(1))
            .how;
    };
    int hung = 0;
    int crashed = 0;
    for (const Damage& damage : damages()) {
        const How how = std::string(damage.name).starts_with("Zeros") ||
                                std::string(damage.name) == "LockHeld" ||
                                std::string(damage.name) == "RootFarBefore" ||
                                std::string(damage.name) == "RootBehindTheSegment"
                            ? endOn(damage.bytes)
                            : How::returned;
        hung += how == How::hung ? 1 : 0;
        crashed += how == How::crashed ? 1 : 0;
    }
    EXPECT_EQ(hung, 2);
    EXPECT_EQ(crashed, 2);
    test::removeSegment();
}

} // namespace
