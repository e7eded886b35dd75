/**
    Runs a kernel test once on every compiled instruction set that this processor has:

        class FirKernel : public KernelFixture {};
        AMBREL_ON_ALL_INSTRUCTION_SETS(FirKernel);
        TEST_P(FirKernel, ...) { ... }
*/
#pragma once

#include "core/kernels.h"
#include "core/kernels/KernelTable.h"
#include "tests/core/TestSignals.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

namespace vesk::audio::test
{

class KernelFixture : public testing::TestWithParam<const kernels::KernelTable*>
{
protected:
    void SetUp() override { kernels::selectKernels(*GetParam()); }
    void TearDown() override { kernels::selectKernels(*kernels::getAvailableKernels().front()); }
};

inline std::vector<const kernels::KernelTable*> getInstructionSets()
{
    const auto tables = kernels::getAvailableKernels();
    return {tables.begin(), tables.end()};
}

inline std::string getInstructionSetName(const testing::TestParamInfo<const kernels::KernelTable*>& info)
{
    std::string name = info.param->name;
    std::erase_if(name, [](unsigned char c) { return std::isalnum(c) == 0; });
    return name;
}

/** Lengths around the borders of vectors of up to 16 lanes and of unrolled loops over them. */
inline constexpr int sweptLengths[] = {1,  2,  3,  4,  5,  7,  8,   9,   15,  16,   17,  31,
                                       32, 33, 63, 64, 65, 97, 100, 127, 129, 1000, 1023};

/** Whether a null for any one of the arrays makes the kernel give ippStsNullPtrErr. An argument that is null
    here already is one that may be. */
template <typename... Args>
testing::AssertionResult refusesNulls(IppStatus (*kernel)(Args...), std::type_identity_t<Args>... args)
{
    std::tuple<Args...> all(args...);
    auto result = testing::AssertionSuccess();
    const auto tryNull = [&]<typename T>(T& argument)
    {
        if constexpr (std::is_pointer_v<T>)
        {
            const T kept = std::exchange(argument, nullptr);
            if (kept != nullptr && std::apply(kernel, all) != ippStsNullPtrErr)
                result = testing::AssertionFailure() << "took a null " << testing::PrintToString(kept);
            argument = kept;
        }
    };
    std::apply([&](auto&... arguments) { (tryNull(arguments), ...); }, all);
    return result;
}

} // namespace vesk::audio::test

#define AMBREL_ON_ALL_INSTRUCTION_SETS(Fixture)                                                              \
    INSTANTIATE_TEST_SUITE_P(All, Fixture, testing::ValuesIn(vesk::audio::test::getInstructionSets()),       \
                             vesk::audio::test::getInstructionSetName)
