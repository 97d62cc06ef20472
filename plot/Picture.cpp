#include "plot/Picture.h"

#include <algorithm>
#include <cairo.h>
#include <cmath>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <turbojpeg.h>

#include "formats/read_file.h"

namespace vexa::plot {
namespace {

// 256 MB as decoded pixels; the header of a small file may claim far more.
constexpr std::int64_t kMostPixels = 64'000'000;

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;
using Decoder = std::unique_ptr<void, decltype(&tjDestroy)>;

bool isTooLarge(int width, int height) {
  return width <= 0 || height <= 0 || std::int64_t{width} * height > kMostPixels;
}

// What Cairo still has to read.
struct Rest {
  const std::string& mBytes;
  std::size_t mAt = 0;
};

cairo_status_t readSome(void* rest, unsigned char* out, unsigned int length) {
  auto& from = *static_cast<Rest*>(rest);
  if (from.mBytes.size() - from.mAt < length) return CAIRO_STATUS_READ_ERROR;
  std::memcpy(out, from.mBytes.data() + from.mAt, length);
  from.mAt += length;
  return CAIRO_STATUS_SUCCESS;
}

// PNG stores numbers with the highest byte first.
std::uint32_t bigEndian(const std::string& bytes, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) value = value << 8 | std::uint8_t(bytes[at + i]);
  return value;
}

// A PNG begins with eight fixed bytes, and its first chunk holds width and height at 16 and 20.
bool isPng(const std::string& bytes) {
  return bytes.size() > 24 && bytes.compare(0, 8, "\x89PNG\r\n\x1a\n") == 0;
}

std::vector<std::uint32_t> decodePng(const std::string& bytes, int& outWidth, int& outHeight) {
  const std::uint32_t width = bigEndian(bytes, 16), height = bigEndian(bytes, 20);
  // Checked before Cairo decodes anything: it would take the memory first.
  if (width > 65'535 || height > 65'535 || isTooLarge(int(width), int(height))) return {};
  Rest rest{bytes};
  const Surface surface(cairo_image_surface_create_from_png_stream(readSome, &rest),
                        cairo_surface_destroy);
  if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) return {};
  // Both keep a pixel in 32 bits, the colour in the lower 24.
  const cairo_format_t format = cairo_image_surface_get_format(surface.get());
  if (format != CAIRO_FORMAT_ARGB32 && format != CAIRO_FORMAT_RGB24) return {};
  outWidth = cairo_image_surface_get_width(surface.get());
  outHeight = cairo_image_surface_get_height(surface.get());
  const auto stride = std::size_t(cairo_image_surface_get_stride(surface.get()));
  const unsigned char* data = cairo_image_surface_get_data(surface.get());
  std::vector<std::uint32_t> pixels(std::size_t(outWidth) * std::size_t(outHeight));
  for (std::size_t y = 0; y < std::size_t(outHeight); ++y) {
    // Rows may be padded: the stride is what leads to the next one.
    std::memcpy(pixels.data() + y * std::size_t(outWidth), data + y * stride,
                std::size_t(outWidth) * sizeof(std::uint32_t));
  }
  return pixels;
}

bool isJpeg(const std::string& bytes) { return bytes.compare(0, 3, "\xFF\xD8\xFF") == 0; }

std::vector<std::uint32_t> decodeJpeg(const std::string& bytes, int& outWidth, int& outHeight) {
  const Decoder decoder(tjInitDecompress(), tjDestroy);
  if (!decoder) return {};
  const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
  int sampling = 0, space = 0;
  if (tjDecompressHeader3(decoder.get(), data, bytes.size(), &outWidth, &outHeight, &sampling,
                          &space) != 0 ||
      isTooLarge(outWidth, outHeight)) {
    return {};
  }
  // Three bytes a pixel is what the decoder gives; four would depend on the order of bytes.
  std::vector<unsigned char> rgb(std::size_t(outWidth) * std::size_t(outHeight) * 3);
  if (tjDecompress2(decoder.get(), data, bytes.size(), rgb.data(), outWidth, 0, outHeight, TJPF_RGB,
                    0) != 0) {
    return {};
  }
  std::vector<std::uint32_t> pixels(rgb.size() / 3);
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    pixels[i] =
        std::uint32_t{rgb[3 * i]} << 16 | std::uint32_t{rgb[3 * i + 1]} << 8 | rgb[3 * i + 2];
  }
  return pixels;
}

// The pixel of a row or column of `count` in which a repeating coordinate falls.
std::size_t indexOf(double coordinate, int count) {
  const double part = coordinate - std::floor(coordinate);
  // A part just below 1 may become 1 in the product.
  return std::size_t(std::clamp(int(part * count), 0, count - 1));
}

}  // namespace

Picture Picture::read(const std::string& path) {
  Picture picture;
  try {
    const std::string bytes = formats::readFile(path);
    if (isPng(bytes)) picture.mPixels = decodePng(bytes, picture.mWidth, picture.mHeight);
    if (isJpeg(bytes)) picture.mPixels = decodeJpeg(bytes, picture.mWidth, picture.mHeight);
  } catch (const std::runtime_error&) {
    return {};
  }
  return picture;
}

Ink Picture::at(double u, double v) const {
  if (!std::isfinite(u) || !std::isfinite(v)) return {1, 1, 1};
  const std::size_t row = std::size_t(mHeight) - 1 - indexOf(v, mHeight);
  const std::uint32_t pixel = mPixels[row * std::size_t(mWidth) + indexOf(u, mWidth)];
  return {(pixel >> 16 & 0xFF) / 255.0, (pixel >> 8 & 0xFF) / 255.0, (pixel & 0xFF) / 255.0};
}

}  // namespace vexa::plot
