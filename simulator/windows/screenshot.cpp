#include "simulator/windows/screenshot.h"

#include <windows.h>

#include "simulator/windows/desktop.h"
#include "simulator/windows/on_desktop.h"

namespace sim::windows {
namespace {

// Rows of a device-independent bitmap: blue, green, red, padded to four bytes.
Picture FromBitmap(const std::uint8_t* bits, ScreenSize size) {
    Picture picture;
    picture.width = static_cast<std::uint32_t>(size.width);
    picture.height = static_cast<std::uint32_t>(size.height);
    const std::size_t pitch = (picture.width * 3 + 3) & ~std::size_t{3};
    for (std::size_t row = 0; row < picture.height; ++row) {
        const std::uint8_t* at = bits + row * pitch;
        for (std::size_t column = 0; column < picture.width; ++column, at += 3) {
            picture.rgb.insert(picture.rgb.end(), {at[2], at[1], at[0]});
        }
    }
    return picture;
}

Picture Grab(ScreenSize size) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = size.width;
    info.bmiHeader.biHeight = -size.height;  // from the top
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    HDC screen = ::GetDC(nullptr);
    HDC memory = ::CreateCompatibleDC(screen);
    void* bits = nullptr;
    HBITMAP bitmap = ::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ previous = ::SelectObject(memory, bitmap);
    ::BitBlt(memory, 0, 0, size.width, size.height, screen, 0, 0, SRCCOPY);
    ::GdiFlush();
    Picture picture = FromBitmap(static_cast<const std::uint8_t*>(bits), size);
    ::SelectObject(memory, previous);
    ::DeleteObject(bitmap);
    ::DeleteDC(memory);
    ::ReleaseDC(nullptr, screen);
    return picture;
}

}  // namespace

Picture TakeScreenshot(const Device& device) {
    Picture picture;
    OnDesktop(device, [&] { picture = Grab(ScreenSizeOf(device)); });
    return picture;
}

}  // namespace sim::windows
