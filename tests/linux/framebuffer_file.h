/*
 * framebuffer_file.h - a framebuffer whose memory is an ordinary file. The program is linked with
 * --wrap=open and --wrap=ioctl: opening "/dev/fb0" opens the file, and the driver's requests on it are
 * answered here. Everything else, mapping above all, is the system's.
 */
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "fb_driver.h"
#include "scratch_folder.h"

class FramebufferFile
{
public:
    static constexpr uint32_t kWidth = 320, kHeight = 180; // pixels
    static constexpr uint32_t kPixelBytes = 2;             // ARGB1555
    static constexpr uint32_t kMemoryBytes = 128 * 1024;   // a little more than the screen
    static constexpr char kPowerOnByte = '\xA7';

    FramebufferFile();
    ~FramebufferFile();
    FramebufferFile(const FramebufferFile &) = delete;
    FramebufferFile &operator=(const FramebufferFile &) = delete;

    /** What the screen would read, the whole memory. */
    std::string memory() const { return bytes_of(path_); }
    uint16_t pixel(uint32_t x, uint32_t y) const;

    /** From now on the request fails with EINVAL. */
    void refuse(unsigned long request) { refused_.insert(static_cast<uint32_t>(request)); }

    /** How many bytes the driver says it has. */
    void say_memory(uint32_t bytes) { fixed_.smem_len = bytes; }

    // What the driver was told last.
    FbDisplayLayer layer = {}; // every attribute as a mask has set it last
    FbColorKey key = {};
    FbGlobalAlpha alpha = {};
    uint8_t shown = 0;
    int pans = 0;

    // For the functions in front of the system's.
    static FramebufferFile *there(); // null = the machine has none
    const std::string &path() const { return path_; }
    void opened(int descriptor) { descriptors_.insert(descriptor); }
    bool has(int descriptor) const { return descriptors_.contains(descriptor); }
    int request(unsigned long request, void *record);

private:
    void take_layer(const FbDisplayLayer &wanted);

    ScratchFolder folder_;
    std::string path_;
    std::set<int> descriptors_;
    std::set<uint32_t> refused_;
    fb_fix_screeninfo fixed_ = {};
    fb_var_screeninfo variable_ = {};
};
