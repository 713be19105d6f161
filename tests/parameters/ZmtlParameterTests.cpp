// SPDX-License-Identifier: GPL-3.0-or-later
#include "parameters/zmtl/Parameter.h"

#include "parameters/zmtl/HardValue.h"
#include "support/RealtimeScope.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zmtl::IParameter;
using zmtl::Parameter;

/// Writes its name into a shared log at each call, with what it reads back.
template <typename T>
struct Recorder final : IParameter<T>::Listener {
    struct Call {
        char name;
        T value;
        bool operator==(const Call&) const = default;
    };

    Recorder(char name, std::vector<Call>& log) : name(name), log(&log) {}
    void parameterChanged(IParameter<T>& parameter) override { log->push_back({name, parameter.get()}); }

    char name;
    std::vector<Call>* log;
};

using FloatCall = Recorder<float>::Call;

class ParameterListeners : public ::testing::Test {
protected:
    std::vector<FloatCall> log;
    Parameter<float> parameter{1.0f};
    Recorder<float> a{'a', log};
    Recorder<float> b{'b', log};
};

// Expected values: the contract of IParameter.
TEST_F(ParameterListeners, HearAChangeInTheOrderOfTheirRegistrationAndReadTheNewValueBack) {
    parameter.addListener(&b);
    parameter.addListener(&a);
    parameter.set(2.0f, true);
    EXPECT_THAT(log, ElementsAre(FloatCall{'b', 2.0f}, FloatCall{'a', 2.0f}));
}

TEST_F(ParameterListeners, HearNothingOfAnUnchangedValue) {
    parameter.addListener(&a);
    parameter.set(1.0f, true);
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(ParameterListeners, HearNothingOfASilentStoreNorOfTheSameValueAfterIt) {
    parameter.addListener(&a);
    parameter.set(2.0f, false);
    EXPECT_EQ(parameter.get(), 2.0f);
    parameter.set(2.0f, true);
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(ParameterListeners, RegisteredTwiceAreCalledTwiceAndLeaveTogether) {
    parameter.addListener(&a);
    parameter.addListener(&b);
    parameter.addListener(&a);
    parameter.set(2.0f, true);
    EXPECT_THAT(log, ElementsAre(FloatCall{'a', 2.0f}, FloatCall{'b', 2.0f}, FloatCall{'a', 2.0f}));

    log.clear();
    parameter.removeListener(&a);
    parameter.set(3.0f, true);
    EXPECT_THAT(log, ElementsAre(FloatCall{'b', 3.0f}));
}

TEST_F(ParameterListeners, ThatWereNeverThereCanBeRemoved) {
    parameter.addListener(&a);
    parameter.removeListener(&b);
    parameter.set(2.0f, true);
    EXPECT_THAT(log, ElementsAre(FloatCall{'a', 2.0f}));
}

// Deliberate oddity: NaN is unequal to itself.
TEST_F(ParameterListeners, HearOfEachNotANumber) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    parameter.addListener(&a);
    parameter.set(nan, true);
    parameter.set(nan, true);
    EXPECT_EQ(log.size(), 2u);
    parameter.set(nan, false);
    EXPECT_EQ(log.size(), 2u);
}

// Plain float equality: the two zeros are one value, yet the last one written is the one that is held.
TEST_F(ParameterListeners, HearNothingOfASignOfZeroThoughItIsStored) {
    parameter.set(0.0f, false);
    parameter.addListener(&a);
    parameter.set(-0.0f, true);
    EXPECT_THAT(log, IsEmpty());
    EXPECT_TRUE(std::signbit(parameter.get()));
}

// A listener may write in its turn; the equal value of the second round ends the loop.
TEST(Parameter, AChangeLoopOfTwoParametersEnds) {
    struct Copier final : IParameter<int>::Listener {
        explicit Copier(IParameter<int>& target) : target(&target) {}
        void parameterChanged(IParameter<int>& parameter) override {
            ++calls;
            target->set(parameter.get(), true);
        }
        IParameter<int>* target;
        int calls = 0;
    };
    Parameter<int> first(0);
    Parameter<int> second(0);
    Copier toSecond(second);
    Copier toFirst(first);
    first.addListener(&toSecond);
    second.addListener(&toFirst);
    first.set(5, true);
    EXPECT_EQ(second.get(), 5);
    EXPECT_EQ(toSecond.calls, 1);
    EXPECT_EQ(toFirst.calls, 1);
}

TEST(Parameter, HoldsBoolsAndEnumerationsAlike) {
    enum class Kind : unsigned { one, two };
    Parameter<Kind> kind(Kind::one);
    kind.set(Kind::two, true);
    EXPECT_EQ(kind.get(), Kind::two);
    Parameter<bool> flag(false);
    flag.set(true, true);
    EXPECT_TRUE(flag.get());
}

TEST_F(ParameterListeners, AreCalledWithoutAllocationOrLock) {
    struct Silent final : IParameter<float>::Listener {
        void parameterChanged(IParameter<float>& /*parameter*/) override { ++calls; }
        int calls = 0;
    } silent;
    parameter.addListener(&silent);
    const test::RealtimeScope scope;
    parameter.set(2.0f, true);
    parameter.set(3.0f, false);
    const float value = parameter.get();
    EXPECT_EQ(scope.violations(), test::RealtimeViolations{});
    EXPECT_EQ(value, 3.0f);
    EXPECT_EQ(silent.calls, 1);
}

TEST(HardValue, TakesAValueInOneStep) {
    zmtl::HardValue<float> value;
    EXPECT_EQ(value.get(), 0.0f);
    value.set(0.25f);
    EXPECT_EQ(value.get(), 0.25f);
}

} // namespace
