// SPDX-License-Identifier: GPL-3.0-or-later
// Expected values follow from the interfaces' documented contracts.
#include "host/HostObjects.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

namespace {

using namespace orvane::kestrum::host;
using Steinberg::int32;
using Steinberg::int64;
using Steinberg::kInvalidArgument;
using Steinberg::kResultFalse;
using Steinberg::kResultOk;
using Steinberg::uint32;

std::string read(MemoryStream& stream, int32 count) {
    std::string text(static_cast<std::size_t>(count), '?');
    int32 done = 0;
    EXPECT_EQ(stream.read(text.data(), count, &done), kResultOk);
    text.resize(static_cast<std::size_t>(done));
    return text;
}

void write(MemoryStream& stream, std::string text) {
    int32 done = 0;
    EXPECT_EQ(stream.write(text.data(), static_cast<int32>(text.size()), &done), kResultOk);
    EXPECT_EQ(done, static_cast<int32>(text.size()));
}

TEST(MemoryStream, ReadsWhatWasWrittenAndStopsAtTheEnd) {
    const auto stream = makeHostObject<MemoryStream>();
    write(*stream.get(), "abcdef");
    int64 position = 0;
    EXPECT_EQ(stream->tell(&position), kResultOk);
    EXPECT_EQ(position, 6);
    EXPECT_EQ(stream->seek(2, Steinberg::IBStream::kIBSeekSet, &position), kResultOk);
    EXPECT_EQ(read(*stream.get(), 3), "cde");
    EXPECT_EQ(read(*stream.get(), 3), "f");
    EXPECT_EQ(read(*stream.get(), 3), "");
}

TEST(MemoryStream, WritingInTheMiddleReplacesAndWritingBehindTheEndFillsWithZeros) {
    const auto stream = makeHostObject<MemoryStream>();
    write(*stream.get(), "abc");
    stream->seek(-2, Steinberg::IBStream::kIBSeekCur, nullptr);
    write(*stream.get(), "X");
    stream->seek(1, Steinberg::IBStream::kIBSeekEnd, nullptr);
    write(*stream.get(), "Y");
    stream->seek(0, Steinberg::IBStream::kIBSeekSet, nullptr);
    EXPECT_EQ(read(*stream.get(), 5), std::string("aXc\0Y", 5));
}

TEST(MemoryStream, ImpossiblePositionsAndCountsAreRefusedAndChangeNothing) {
    const auto stream = makeHostObject<MemoryStream>();
    write(*stream.get(), "abc");
    std::array<char, 4> memory{};
    EXPECT_EQ(stream->seek(-4, Steinberg::IBStream::kIBSeekCur, nullptr), kInvalidArgument);
    EXPECT_EQ(stream->seek(int64{1} << 40, Steinberg::IBStream::kIBSeekSet, nullptr), kInvalidArgument);
    EXPECT_EQ(stream->seek(0, 17, nullptr), kInvalidArgument);
    EXPECT_EQ(stream->read(memory.data(), -1, nullptr), kInvalidArgument);
    EXPECT_EQ(stream->write(nullptr, 1, nullptr), kInvalidArgument);
    EXPECT_EQ(stream->content().size(), 3u);
}

TEST(AttributeList, GivesBackEachKindOfValueUnderItsKey) {
    const auto list = makeHostObject<AttributeList>();
    int64 integer = 0;
    double number = 0;
    list->setInt("i", -5);
    list->setFloat("f", 0.5);
    EXPECT_EQ(list->getInt("i", integer), kResultOk);
    EXPECT_EQ(integer, -5);
    EXPECT_EQ(list->getFloat("f", number), kResultOk);
    EXPECT_EQ(number, 0.5);

    const std::array<char, 3> data{1, 2, 3};
    const void* found = nullptr;
    uint32 size = 0;
    list->setBinary("b", data.data(), 3);
    EXPECT_EQ(list->getBinary("b", found, size), kResultOk);
    ASSERT_EQ(size, 3u);
    EXPECT_EQ(std::memcmp(found, data.data(), 3), 0);
}

TEST(AttributeList, AMissingKeyOrAnotherKindIsAnsweredWithFalse) {
    const auto list = makeHostObject<AttributeList>();
    int64 integer = 7;
    double number = 0;
    EXPECT_EQ(list->getInt("i", integer), kResultFalse);
    list->setInt("i", 1);
    EXPECT_EQ(list->getFloat("i", number), kResultFalse);
    EXPECT_EQ(integer, 7);
}

TEST(AttributeList, AStringIsCutToTheReadersMemoryWithItsClosingZero) {
    const auto list = makeHostObject<AttributeList>();
    list->setString("s", u"speaker");
    std::array<Vst::TChar, 4> memory{};
    EXPECT_EQ(list->getString("s", memory.data(), sizeof(memory)), kResultOk);
    EXPECT_EQ(std::u16string(memory.data()), u"spe");
}

TEST(ParameterChanges, QueuesAreFoundAgainByTheirParameter) {
    const auto changes = makeHostObject<ParameterChanges>();
    int32 index = -1;
    Vst::IParamValueQueue* const first = changes->addParameterData(11, index);
    EXPECT_EQ(index, 0);
    changes->addParameterData(12, index);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(changes->addParameterData(11, index), first);
    EXPECT_EQ(index, 0);
    EXPECT_EQ(changes->getParameterCount(), 2);
    EXPECT_EQ(changes->getParameterData(2), nullptr);
    EXPECT_EQ(changes->getParameterData(-1), nullptr);

    first->addPoint(3, 0.25, index);
    int32 offset = 0;
    Vst::ParamValue value = 0;
    EXPECT_EQ(first->getPoint(0, offset, value), kResultOk);
    EXPECT_EQ(offset, 3);
    EXPECT_EQ(value, 0.25);
    EXPECT_EQ(first->getPoint(1, offset, value), kInvalidArgument);
    changes->clear();
    EXPECT_EQ(changes->getParameterCount(), 0);
}

TEST(HostApplication, TellsItsNameAndMakesMessages) {
    const auto application = makeHostObject<HostApplication>();
    Vst::String128 name{};
    EXPECT_EQ(application->getName(name), kResultOk);
    EXPECT_EQ(toUtf8(name, 128), "kestrum");

    TUID id{};
    std::memcpy(id, interfaceId<Vst::IMessage>(), sizeof(TUID));
    void* object = nullptr;
    ASSERT_EQ(application->createInstance(id, id, &object), kResultOk);
    const auto message = ComPointer<Vst::IMessage>::adopt(static_cast<Vst::IMessage*>(object));
    message->setMessageID("hello");
    EXPECT_STREQ(message->getMessageID(), "hello");
    EXPECT_EQ(message->getAttributes()->setInt("n", 3), kResultOk);

    std::memcpy(id, interfaceId<Vst::IComponent>(), sizeof(TUID));
    EXPECT_EQ(application->createInstance(id, id, &object), kResultFalse);
    EXPECT_EQ(object, nullptr);
}

TEST(HostObject, AnswersForItsInterfacesAndForNoOther) {
    const auto stream = makeHostObject<MemoryStream>();
    EXPECT_TRUE(query<Steinberg::IBStream>(stream.get()));
    EXPECT_TRUE(query<FUnknown>(stream.get()));
    EXPECT_FALSE(query<Vst::IMessage>(stream.get()));
}

TEST(Texts, Utf16BecomesUtf8AndHalfPairsBecomeReplacementCharacters) {
    EXPECT_EQ(toUtf8(u"2.0 +/-30\u00B0", 128), "2.0 +/-30\xC2\xB0");
    EXPECT_EQ(toUtf8(u"\u20AC \U0001D11E", 128), "\xE2\x82\xAC \xF0\x9D\x84\x9E");
    constexpr std::array<Vst::TChar, 3> broken{0xD800, 'a', 0xDC00};
    EXPECT_EQ(toUtf8(broken.data(), 3), "\xEF\xBF\xBD"
                                        "a\xEF\xBF\xBD");
    EXPECT_EQ(toUtf8(u"abc", 2), "ab");
}

TEST(Texts, ALongNameIsCutAtTheStringsEnd) {
    Vst::String128 name{};
    copyAscii(std::string(200, 'x'), name);
    EXPECT_EQ(toUtf8(name, 128), std::string(127, 'x'));
}

} // namespace
