#include "nq/resources/color.h"

#include <gtest/gtest.h>

#include <clocale>
#include <concepts>
#include <limits>
#include <memory>
#include <string>
#include <unordered_set>

#include "tests/support/copy_protocol_check.h"

namespace {

std::string bytes(const NQColor& color) {
  return std::to_string(color.ired()) + ' ' + std::to_string(color.igreen()) + ' ' +
         std::to_string(color.iblue());
}

NQColor colorOf(int red, int green, int blue) {
  NQColor color;
  color.ired(red);
  color.igreen(green);
  color.iblue(blue);
  return color;
}

TEST(NQColor, CopiesEverythingButWhetherItNeedsSaving) {
  NQColor sample = colorOf(1, 2, 3);
  sample.transparent(1);
  sample.needsSaving(0);
  checkCopyProtocol(
      sample, [] { return std::make_unique<NQColor>(colorOf(4, 2, 3)); },
      [](const NQColor& a, const NQColor& b) {
        return a.compare(&b) == 1 && bytes(a) == bytes(b);
      });
  EXPECT_EQ(sample.needsSaving(), 0);
  EXPECT_EQ(NQColor(sample).needsSaving(), 1);
  NQColor equal(sample);
  equal.needsSaving(0);
  equal = sample;
  EXPECT_EQ(equal.needsSaving(), 0) << "nothing changed";
  equal.transparent(0);
  equal.needsSaving(0);
  equal.copyAttributes(&sample);
  EXPECT_EQ(equal.transparent(), 1);
  EXPECT_EQ(equal.needsSaving(), 1);
}

TEST(NQColor, ComparesChannelsAndTransparency) {
  const NQColor sample = colorOf(1, 2, 3);
  NQColor other = sample;
  EXPECT_EQ(sample.compare(&other), 1);
  EXPECT_EQ(sample.compare(nullptr), 0);
  other.transparent(-5);
  EXPECT_EQ(other.transparent(), 1);
  EXPECT_EQ(sample.compare(&other), 0);
  for (const NQColor& different :
       {colorOf(0, 2, 3), colorOf(1, 0, 3), colorOf(1, 2, 0)}) {
    EXPECT_EQ(sample.compare(&different), 0) << bytes(different);
  }
}

TEST(NQColor, RoundsFractionsToBytes) {
  const double kInfinity = std::numeric_limits<double>::infinity();
  const struct {
    double fraction;
    int byte;
  } kRows[] = {{0, 0},          {0.5, 128},
               {0.1, 26},       {0.998, 254},
               {0.9981, 255},   {1, 255},
               {1.5, 255},      {-0.2, 0},
               {-0.001, 0},     {0.0019, 0},
               {0.002, 1},      {1e300, 255},
               {-1e300, 0},     {kInfinity, 255},
               {-kInfinity, 0}, {std::numeric_limits<double>::quiet_NaN(), 0}};
  for (const auto& row : kRows) {
    NQColor color = colorOf(7, 7, 7);
    EXPECT_EQ(color.red(row.fraction), row.byte / 255.0) << row.fraction;
    EXPECT_EQ(color.green(row.fraction), row.byte / 255.0) << row.fraction;
    EXPECT_EQ(color.blue(row.fraction), row.byte / 255.0) << row.fraction;
    EXPECT_EQ(bytes(color), bytes(colorOf(row.byte, row.byte, row.byte)));
    NQColor gray = colorOf(1, 2, 3);
    EXPECT_EQ(gray.gray(row.fraction), row.byte / 255.0) << row.fraction;
    EXPECT_EQ(gray.compare(&color), 1);
  }
  NQColor color;
  EXPECT_EQ(color.ired(0x1fe), 254);
  EXPECT_EQ(color.igreen(-1), 255);
  EXPECT_EQ(color.iblue(256), 0);
  EXPECT_EQ(color.red(), 254 / 255.0);
}

TEST(NQColor, HasAPalette) {
  const char* const kBytes[] = {
      "0 0 0",       "0 0 255",     "255 0 0",     "0 255 0",     "255 255 0",
      "255 0 255",   "0 255 255",   "230 230 230", "204 204 255", "255 204 204",
      "204 255 204", "255 255 179", "255 179 255", "179 255 255", "153 153 153",
      "26 26 204",   "204 26 26",   "26 204 26",   "204 204 26",  "204 26 204",
      "26 204 204",  "102 102 102", "0 0 128",     "128 0 0",     "0 128 0",
      "128 128 0",   "128 0 128",   "0 128 128",   "255 255 255"};
  NQColor color;
  color.transparent(1);
  int number = 0;
  for (const char* const expected : kBytes) {
    color.rgb(static_cast<NQColorIdentifierEnum>(number));
    EXPECT_EQ(bytes(color), expected) << number;
    EXPECT_EQ(bytes(NQColor(static_cast<NQColorIdentifierEnum>(number))), expected);
    ++number;
  }
  EXPECT_EQ(color.transparent(), 1);
  color.rgb(0.1, 0.2, 0.3);
  color.needsSaving(0);
  for (const int none : {-1, 29, 256, std::numeric_limits<int>::max()}) {
    color.rgb(static_cast<NQColorIdentifierEnum>(none));
    EXPECT_EQ(bytes(color), "26 51 77");
  }
  EXPECT_EQ(color.needsSaving(), 0);
}

TEST(NQColor, KnowsWhetherItNeedsSaving) {
  NQColor color = colorOf(10, 20, 30);
  void (*const kChanges[])(NQColor&) = {
      [](NQColor& c) { c.red(1); },
      [](NQColor& c) { c.green(1); },
      [](NQColor& c) { c.blue(1); },
      [](NQColor& c) { c.ired(5); },
      [](NQColor& c) { c.igreen(5); },
      [](NQColor& c) { c.iblue(5); },
      [](NQColor& c) { c.gray(0.5); },
      [](NQColor& c) { c.rgb(0.1, 0.5, 0.5); },
      [](NQColor& c) { c.rgb(NQ_COLOR_LIGHT_CYAN); },
      [](NQColor& c) { c.transparent(1); },
      [](NQColor& c) { c.transparent(0); },
      [](NQColor& c) { c.setRGBFromString("0 0 1"); },
  };
  int number = 0;
  for (const auto& change : kChanges) {
    EXPECT_EQ(color.needsSaving(0), 0);
    change(color);
    EXPECT_EQ(color.needsSaving(), 1) << number;
    color.needsSaving(0);
    change(color);
    EXPECT_EQ(color.needsSaving(), 0) << number << ": what is there already";
    ++number;
  }
  EXPECT_EQ(color.needsSaving(7), 1);
}

TEST(NQColor, HasALuminanceAndAnInverse) {
  NQColor color = colorOf(255, 51, 0);
  EXPECT_DOUBLE_EQ(color.gray(), 0.2 * 0.587 + 0.299);
  EXPECT_DOUBLE_EQ(color.invertGray(), 1 - color.gray());
  EXPECT_EQ(color.invertRed(), 0);
  EXPECT_EQ(color.invertGreen(), 0.8);
  EXPECT_EQ(color.invertBlue(), 1);
  color.transparent(1);
  color.needsSaving(0);
  const NQColor inverse = color.invertColor();
  EXPECT_EQ(bytes(inverse), "0 204 255");
  EXPECT_EQ(inverse.transparent(), 1);
  EXPECT_EQ(inverse.needsSaving(), 1);
}

TEST(NQColor, ReadsThreeFractions) {
  const std::string many(2000, '0');
  const struct {
    std::string text;
    const char* bytes;  // null: refused
  } kRows[] = {
      {"1 0.5 0", "255 128 0"},
      {"   1    0.5  0  ", "255 128 0"},
      {"1 0.5 0 and more", "255 128 0"},
      {"+1 -0.5 .5", "255 0 128"},
      {"1e0 5E-1 1e-1", "255 128 26"},
      {"1x 0.5,3 1.e", "255 128 255"},
      {"red 1 green", "0 255 0"},  // no number is 0, and counts
      {"inf nan 0x1", "0 0 0"},
      {"- + .", "0 0 0"},
      {"--1 +-1 1-", "0 0 255"},
      {"1\t0 1\n0 1", "255 255 255"},  // only the space parts words
      {"\t1 1 1", "0 255 255"},
      {"1e999 1e-999 -1e999", "255 0 0"},
      {"1" + many + " ." + many + "1 0" + many + "1.0", "255 0 255"},
      {"00" + many + "." + many + "1 1 1", "0 255 255"},
      {"1 0.5", nullptr},
      {"1 0.5 ", nullptr},
      {"1,0,0", nullptr},
      {"", nullptr},
      {"    ", nullptr},
      {"1\t0.5\t0", nullptr},
  };
  for (const auto& row : kRows) {
    NQColor color = colorOf(1, 2, 3);
    color.needsSaving(0);
    // Exactly as long as it is, so that sanitizers see a step too far.
    const auto copy = std::make_unique<char[]>(row.text.size() + 1);
    row.text.copy(copy.get(), row.text.size());
    const bool good = row.bytes != nullptr;
    EXPECT_EQ(color.setRGBFromString(copy.get()), good ? 1 : 0) << row.text;
    EXPECT_EQ(bytes(color), good ? row.bytes : "1 2 3") << row.text;
    EXPECT_EQ(color.needsSaving(), good ? 1 : 0) << row.text;
  }
  NQColor color;
  EXPECT_EQ(color.setRGBFromString(nullptr), 0);
}

TEST(NQColor, ReadsAndWritesHexadecimalDigits) {
  const struct {
    const char* text;
    const char* written;  // null: refused
  } kRows[] = {
      {"#ff8000", "#ff8000"},
      {"#Ff80aAff", "#ff80aa"},
      {"#01020300", "#01020300"},
      {"#0102037F", "#01020300"},
      {"#01020380", "#010203"},
      {"#00000000", "#00000000"},
      {"ff8000", nullptr},
      {"#ff800", nullptr},
      {"#ff80000", nullptr},
      {"#ff8000ff0", nullptr},
      {"#-f8000", nullptr},
      {"#0xff00", nullptr},
      {"#ff 000", nullptr},
      {"#ff800g", nullptr},
      {"#", nullptr},
      {"", nullptr},
      {nullptr, nullptr},
  };
  std::unordered_set<NQColor> all;
  for (const auto& row : kRows) {
    for (const int before : {0, 1}) {
      NQColor color = colorOf(9, 8, 7);
      color.transparent(before);
      const NQColor old = color;
      const bool good = row.written != nullptr;
      EXPECT_EQ(color.setFromHexText(row.text), good ? 1 : 0) << row.text;
      EXPECT_EQ(color.hexText(), good ? row.written : old.hexText());
      EXPECT_EQ(color == old, !good) << row.text << " gives " << color;
      if (good) all.insert(color);
    }
  }
  EXPECT_EQ(all.size(), 5U);
  static_assert(std::copyable<NQColor>);
}

std::string text(const NQColor& color) {
  char out[17] = "................";
  EXPECT_EQ(color.setStringFromRGB(out), 0);
  EXPECT_EQ(out[15], '.') << "written past the end";
  return out;
}

TEST(NQColor, WritesTheSmallestFractionsThatAreEnough) {
  EXPECT_EQ(text(colorOf(255, 128, 0)), "1.00 0.50 0.00");
  EXPECT_EQ(text(colorOf(26, 26, 204)), "0.10 0.10 0.80");
  EXPECT_EQ(NQColor().setStringFromRGB(nullptr), 0);
  const std::string locale = std::setlocale(LC_ALL, nullptr);
  std::setlocale(LC_ALL, "de_DE.UTF-8");  // where it is installed
  for (int byte = 0; byte < 256; ++byte) {
    const std::string written = text(colorOf(byte, 255 - byte, 0));
    NQColor read;
    EXPECT_EQ(read.setRGBFromString(written.c_str()), 1);
    EXPECT_GE(read.ired(), byte);
    EXPECT_EQ(text(read), written) << "what was read once stays the same";
    const int hundredths = std::stoi(written.substr(0, 1) + written.substr(2, 2));
    NQColor below;
    below.red((hundredths - 1) / 100.0);
    EXPECT_TRUE(byte == 0 || below.ired() < byte) << written;
  }
  std::setlocale(LC_ALL, locale.c_str());
}

}  // namespace
