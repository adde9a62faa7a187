#include "surrogatemodel_kriging/ElementStore.h"

#include <cstdint>
#include <limits>
#include <new>

#include <gtest/gtest.h>

using fenn::ElementStore;

namespace
{

/// So many that the number of their bytes, were it to wrap, would be 8.
constexpr std::size_t tooMany = std::numeric_limits<std::size_t>::max() / sizeof(double) + 2;

} // namespace

TEST(ElementStoreTest, ElementsStartOnALineOfTheCache)
{
    ElementStore store;

    store.allocate(3);

    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(store.data()) % 64, 0U);
}

TEST(ElementStoreTest, ANumberOfElementsWhoseBytesCannotBeCountedIsRefused)
{
    ElementStore store;

    EXPECT_THROW(store.allocate(tooMany), std::bad_alloc);
}

TEST(ElementStoreTest, IsEmptyAfterAnAllocationThatFailed)
{
    ElementStore store;
    store.allocate(3);

    EXPECT_THROW(store.allocate(tooMany), std::bad_alloc);

    EXPECT_EQ(store.data(), nullptr);
}
