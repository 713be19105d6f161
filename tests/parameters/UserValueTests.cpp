// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/core/SelectorValue.h"
#include "parameters/core/SliderValue.h"
#include "parameters/core/ToggleValue.h"
#include "support/RealtimeScope.h"

#include <gmock/gmock.h>

#include <functional>
#include <limits>
#include <memory>
#include <vector>

namespace {

using namespace orvane::kestrum::core;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Logs itself by address and what it reads back.
template <typename Interface, typename T>
struct Recorder final : Interface::Listener {
    struct Call {
        const Recorder* listener;
        T value;
        bool operator==(const Call&) const = default;
    };

    Recorder(Interface& value, std::vector<Call>& log) : value(&value), log(&log) {}
    void valueChanged() override { log->push_back({this, value->getValue()}); }

    Interface* value;
    std::vector<Call>* log;
};

/// What the kinds have in common, told by one example each.
template <typename Value, typename Interface, typename T>
struct Kind {
    using ValueType = Value;
    using InterfaceType = Interface;
    using Held = T;
};

struct PlainSlider : Kind<internal::SliderValue<float>, ISliderValue, float> {
    static constexpr float startValue = 50.0f, otherValue = 12.5f, thirdValue = -3.0f;
};
struct AtomicSlider : Kind<internal::SliderValue<std::atomic<float>>, ISliderValue, float> {
    static constexpr float startValue = 0.0f, otherValue = 90.0f, thirdValue = -180.0f;
};
struct Selector : Kind<SelectorValue, ISelectorValue, std::uint32_t> {
    static constexpr std::uint32_t startValue = 0xEDE88239, otherValue = 0xD30A58A0, thirdValue = 0;
};
struct Toggle : Kind<ToggleValue, IToggleValue, bool> {
    static constexpr bool startValue = false, otherValue = true, thirdValue = false;
};

using Kinds = ::testing::Types<PlainSlider, AtomicSlider, Selector, Toggle>;

template <typename K>
class UserValue : public ::testing::Test {
protected:
    using Call = typename Recorder<typename K::InterfaceType, typename K::Held>::Call;
    using Listener = Recorder<typename K::InterfaceType, typename K::Held>;

    typename K::ValueType held{K::startValue};
    typename K::InterfaceType& value{held};
    std::vector<Call> log;
};

TYPED_TEST_SUITE(UserValue, Kinds);

TYPED_TEST(UserValue, KeepsWhatItWasMadeWithAndWhatItWasSetTo) {
    EXPECT_EQ(this->value.getValue(), TypeParam::startValue);
    this->value.setValue(TypeParam::otherValue);
    EXPECT_EQ(this->value.getValue(), TypeParam::otherValue);
}

TYPED_TEST(UserValue, CallsItsListenersInTheOrderOfTheirAddresses) {
    typename TestFixture::Listener listeners[]{{this->value, this->log}, {this->value, this->log}};
    this->value.addListener(&listeners[1]);
    this->value.addListener(&listeners[0]);
    this->value.setValue(TypeParam::otherValue);
    EXPECT_THAT(this->log, ElementsAre(typename TestFixture::Call{&listeners[0], TypeParam::otherValue},
                                       typename TestFixture::Call{&listeners[1], TypeParam::otherValue}));
}

TYPED_TEST(UserValue, IsSilentAboutAnEqualValue) {
    typename TestFixture::Listener listener(this->value, this->log);
    this->value.addListener(&listener);
    this->value.setValue(TypeParam::startValue);
    EXPECT_THAT(this->log, IsEmpty());
    this->value.setValue(TypeParam::otherValue);
    this->value.setValue(TypeParam::otherValue);
    EXPECT_EQ(this->log.size(), 1u);
}

TYPED_TEST(UserValue, KnowsAListenerOnlyOnceHoweverOftenItIsAdded) {
    typename TestFixture::Listener listener(this->value, this->log);
    this->value.addListener(&listener);
    this->value.addListener(&listener);
    this->value.setValue(TypeParam::otherValue);
    EXPECT_EQ(this->log.size(), 1u);
    this->value.removeListener(&listener);
    this->value.setValue(TypeParam::thirdValue);
    EXPECT_EQ(this->log.size(), 1u);
}

// A presenter writes back what it was told; the equal value ends the loop.
TYPED_TEST(UserValue, EndsAChangeLoop) {
    struct Echo final : TypeParam::InterfaceType::Listener {
        explicit Echo(typename TypeParam::InterfaceType& value) : value(&value) {}
        void valueChanged() override {
            ++calls;
            value->setValue(value->getValue());
        }
        typename TypeParam::InterfaceType* value;
        int calls = 0;
    } echo(this->value);
    this->value.addListener(&echo);
    this->value.setValue(TypeParam::otherValue);
    EXPECT_EQ(echo.calls, 1);
}

TYPED_TEST(UserValue, IsReadWithoutAllocationOrLock) {
    const test::RealtimeScope scope;
    const auto seen = this->value.getValue();
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
    EXPECT_EQ(seen, TypeParam::startValue);
}

/// Deliberate oddity: a NaN that is held is unequal to everything, itself included.
template <typename Storage>
class NotANumberInASlider : public ::testing::Test {};

using Storages = ::testing::Types<float, std::atomic<float>>;
TYPED_TEST_SUITE(NotANumberInASlider, Storages);

TYPED_TEST(NotANumberInASlider, NotifiesOnEveryFurtherSetValue) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    struct Counter final : ISliderValue::Listener {
        void valueChanged() override { ++calls; }
        int calls = 0;
    } counter;
    internal::SliderValue<TypeParam> value(0.0f);
    value.addListener(&counter);
    value.setValue(nan);
    EXPECT_EQ(counter.calls, 1);
    value.setValue(nan);
    EXPECT_EQ(counter.calls, 2);
    value.setValue(1.0f);
    EXPECT_EQ(counter.calls, 3);
    value.setValue(1.0f);
    EXPECT_EQ(counter.calls, 3);
}

} // namespace
