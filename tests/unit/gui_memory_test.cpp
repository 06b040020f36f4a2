/* Allocations that fail: the loaders refuse with their text, a QR image ends the process. */
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <set>
#include <sys/mman.h>
#include <unistd.h>

#include "gui_bmp_file.h"
#include "recording_expect.h"

using gui_test::BmpFile;
using gui_test::FileOnDisk;
using gui_test::Surface;
using gui_test::test_bitmap;

namespace
{

// The library's allocations of this many bytes and more fail; 0 = none does. The C library's own and
// the encoder's do not come through here.
size_t failing_from_bytes = 0;
unsigned passed = 0; // allocations of such a size that still succeed

unsigned freed_codes = 0; // given back to the encoder

// What the library allocated and has not freed yet.
std::set<void *> &held()
{
    static auto *all = new std::set<void *>;
    return *all;
}

} // namespace

extern "C" {
void *__real_malloc(size_t size);
void __real_free(void *memory);

void *__wrap_malloc(size_t size)
{
    if (failing_from_bytes != 0 && size >= failing_from_bytes) {
        if (passed == 0) return nullptr;
        --passed;
    }
    void *memory = __real_malloc(size);
    held().insert(memory);
    return memory;
}

void __real_QRcode_free(void *code);

void __wrap_QRcode_free(void *code)
{
    ++freed_codes;
    __real_QRcode_free(code);
}

void __wrap_free(void *memory)
{
    held().erase(memory);
    __real_free(memory);
}
}

namespace
{

// Address space for a large surface, of which only the written pages take memory. All 0 at first.
class Reservation
{
public:
    explicit Reservation(size_t size)
        : size_(size), bytes_(mmap(nullptr, size, PROT_READ | PROT_WRITE,
                                   MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0))
    {
        if (bytes_ == MAP_FAILED) std::abort();
    }
    ~Reservation() { munmap(bytes_, size_); }
    Reservation(const Reservation &) = delete;
    Reservation &operator=(const Reservation &) = delete;

    uint8_t *bytes() const { return static_cast<uint8_t *>(bytes_); }

private:
    size_t size_;
    void *bytes_;
};

size_t open_descriptors()
{
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<size_t>(std::distance(begin(all), end(all)));
}

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

// Headers may state any size; memory is asked for as much as the file has bytes for.
TEST(GuiMemory, ASmallFileNeedsLittleMemoryWhateverItsHeadersSay)
{
    struct Case {
        int32_t width, height;
        uint16_t bits;
        bool plain_too; // LoadBMP wants rows of whole words
    };
    // A row of 100 MB; rows that LoadBMPEx reads 64 KiB apart, 65 MB of them; many short rows.
    for (const Case &stated :
         {Case{25000000, 1, 32, true}, Case{43690, 1000, 24, false}, Case{4, 65535, 24, true}}) {
        BmpFile bitmap = test_bitmap(4, 1, stated.bits);
        bitmap.width = stated.width;
        bitmap.height = stated.height;
        FileOnDisk file(bitmap);
        for (bool converted : {false, true}) {
            if (!converted && !stated.plain_too) continue;
            // The file's pixels are the first of its lowest row, which is the surface's last one.
            const size_t pitch = static_cast<size_t>(stated.width) * 4;
            Reservation surface(pitch * static_cast<size_t>(stated.height));
            OsdSurface record = {0, 0, 0, surface.bytes()};
            recording::forget_printed();
            testing::internal::CaptureStderr();
            failing_from_bytes = 4096;
            const int32_t result =
                converted ? LoadBMPEx(file.path(), &record, 7) : LoadBMP(file.path(), &record);
            failing_from_bytes = 0;
            testing::internal::GetCapturedStderr();
            EXPECT_EQ(result, 0) << stated.width << " x " << stated.height;
            EXPECT_NE(recording::printed_text().find("error!line:"), std::string::npos) << "a short read";
            const uint8_t *row = surface.bytes() + pitch * static_cast<size_t>(stated.height - 1);
            for (size_t x = 0; x < 4; ++x)
                EXPECT_EQ(row[4 * x], gui_test::test_byte(static_cast<int32_t>(x), 0, 0)) << x;
            if (stated.width > 4) {
                EXPECT_EQ(row[4 * 4], 0) << "behind the last pixel of the file";
            }
        }
    }
}

TEST(GuiMemory, WhatIsAllocatedIsFreedAndWhatIsOpenedIsClosed)
{
    const size_t before = held().size(), open_before = open_descriptors();
    std::vector<uint8_t> cut = test_bitmap(64, 9, 24).bytes();
    cut.resize(cut.size() - 100);
    for (const std::vector<uint8_t> &bytes : {test_bitmap(64, 9, 24).bytes(), cut}) {
        FileOnDisk file(bytes);
        Surface surface(64 * 9 * 4);
        testing::internal::CaptureStderr();
        EXPECT_EQ(LoadBMP(file.path(), &surface.record), 0);
        EXPECT_EQ(LoadBMPEx(file.path(), &surface.record, 7), 0);
        testing::internal::GetCapturedStderr();
        EXPECT_EQ(held().size(), before);
        EXPECT_EQ(open_descriptors(), open_before);
    }
    FileOnDisk image(std::vector<uint8_t>{});
    qrencode("http://192.168.1.10", image.path());
    EXPECT_EQ(held().size(), before);
    EXPECT_EQ(freed_codes, 1u);
    EXPECT_EQ(open_descriptors(), open_before);
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
