/* Allocations that fail: the loaders refuse with their text, a QR image ends the process. */
#include <gtest/gtest.h>

#include <cstdlib>
#include <unistd.h>

#include "gui_bmp_file.h"
#include "printed.h"

using gui_test::FileOnDisk;
using gui_test::Surface;
using gui_test::test_bitmap;

namespace
{

// The library's allocations of this many bytes and more fail; 0 = none does. The C library's own and
// the encoder's do not come through here.
size_t failing_from_bytes = 0;
unsigned passed = 0; // allocations of such a size that still succeed

} // namespace

extern "C" {
void *__real_malloc(size_t size);

void *__wrap_malloc(size_t size)
{
    if (failing_from_bytes == 0 || size < failing_from_bytes) return __real_malloc(size);
    if (passed == 0) return nullptr;
    --passed;
    return __real_malloc(size);
}
}

namespace
{

constexpr size_t kPalette_bytes = 1024; // the smaller of the two buffers of a QR image

[[noreturn]] void encode_with_failing_memory(const char *path, unsigned allocations_before)
{
    passed = allocations_before;
    failing_from_bytes = kPalette_bytes;
    qrencode("text", path);
    std::exit(0);
}

} // namespace

TEST(GuiMemory, ALoaderWithoutItsBufferRefuses)
{
    FileOnDisk file(test_bitmap(4, 3, 24));
    for (bool converted : {false, true}) {
        recording::forget_printed();
        Surface surface(4 * 3 * 4);
        failing_from_bytes = 4 * 3 * 3; // the pixel area
        const int32_t result =
            converted ? LoadBMPEx(file.path(), &surface.record, 3) : LoadBMP(file.path(), &surface.record);
        failing_from_bytes = 0;
        EXPECT_EQ(result, -1);
        EXPECT_PRINTED_AS_ERROR("load_bmp.c", "not enough memory to malloc!");
        EXPECT_TRUE(surface.untouched());
    }
}

// What is only copied is read where it belongs: it needs no memory besides.
TEST(GuiMemory, CopiedRowsNeedNoBuffer)
{
    FileOnDisk file(test_bitmap(4, 3, 32));
    Surface surface(4 * 3 * 4);
    failing_from_bytes = 4 * 3 * 4;
    EXPECT_EQ(LoadBMPEx(file.path(), &surface.record, 7), 0);
    failing_from_bytes = 0;
    EXPECT_EQ(surface.bytes()[0], gui_test::test_byte(0, 2, 0));
}

TEST(GuiMemoryExits, AQrImageWithoutItsPixelsOrItsPaletteEndsTheProcess)
{
    for (unsigned before : {0u, 1u}) {
        FileOnDisk file(std::vector<uint8_t>{});
        EXPECT_EXIT(encode_with_failing_memory(file.path(), before), testing::ExitedWithCode(255), "");
    }
    FileOnDisk file(std::vector<uint8_t>{});
    EXPECT_EXIT(encode_with_failing_memory(file.path(), 2), testing::ExitedWithCode(0), "");
}
