#include "plot/Picture.h"

#include <gtest/gtest.h>

#include "formats/read_file.h"
#include "formats/write_file.h"
#include "plot/Canvas.h"

namespace vexa::plot {
namespace {

// Two by two: red and green above, blue and white below.
std::string writeQuarters() {
  Canvas canvas(Canvas::Format::kPng, 2, 2);
  canvas.setInk({1, 0, 0});
  canvas.rectangle(0, 0, 1, 1);
  canvas.setInk({0, 1, 0});
  canvas.rectangle(1, 0, 1, 1);
  canvas.setInk({0, 0, 1});
  canvas.rectangle(0, 1, 1, 1);
  const std::string path = testing::TempDir() + "quarters.png";
  canvas.write(path);
  return path;
}

std::string textOf(const Ink& ink) {
  return std::to_string(int(ink.r)) + std::to_string(int(ink.g)) + std::to_string(int(ink.b));
}

TEST(Picture, CoordinatesStartBelowAndRepeat) {
  const Picture picture = Picture::read(writeQuarters());
  ASSERT_FALSE(picture.isEmpty());
  EXPECT_EQ(textOf(picture.at(0.25, 0.75)), "100");
  EXPECT_EQ(textOf(picture.at(0.75, 0.75)), "010");
  EXPECT_EQ(textOf(picture.at(0, 0)), "001");
  EXPECT_EQ(textOf(picture.at(-0.25, 2.75)), "010");
  EXPECT_EQ(textOf(picture.at(0.25, -1.0 / 0.0)), "111");
}

TEST(Picture, WhatIsNoPictureIsEmpty) {
  const std::string bytes = formats::readFile(writeQuarters()), path = testing::TempDir() + "x.png";
  EXPECT_TRUE(Picture::read("/nowhere/x.png").isEmpty());
  for (const std::size_t length :
       {std::size_t{0}, std::size_t{8}, std::size_t{24}, bytes.size() / 2}) {
    formats::writeFile(path, bytes.substr(0, length));
    EXPECT_TRUE(Picture::read(path).isEmpty()) << length;
  }
  std::string huge = bytes;
  huge.replace(16, 8, std::string("\0\1\0\0\0\1\0\0", 8));  // says 65,536 by 65,536 pixels
  formats::writeFile(path, huge);
  EXPECT_TRUE(Picture::read(path).isEmpty());
  formats::writeFile(path, "\xFF\xD8\xFF no JPEG behind this");
  EXPECT_TRUE(Picture::read(path).isEmpty());
}

}  // namespace
}  // namespace vexa::plot
