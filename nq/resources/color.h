// color.h -- NQColor, a colour of three 8-bit channels that may be transparent.
//
// Channels are given as fractions, 0 to 1, or as bytes, 0 to 255. A fraction x
// becomes the byte x * 255 + 0.5, truncated and clamped; so setters answer with
// what they stored, which may differ a little from what was asked for.
//
// A colour remembers whether it changed since its needsSaving() was last cleared,
// so that a writer can skip it otherwise. Setting what is there already is no
// change. A copy takes over channels and transparency alone: copying is a change of
// the target, or none. A new colour is black, opaque and needs saving.

#ifndef NQ_RESOURCES_COLOR_H
#define NQ_RESOURCES_COLOR_H

#include "nq/core/copy_protocol.h"
#include "nq/core/value.h"

// The palette. Light colours have their full channels at 1 and the others at 0.7 to
// 0.9, medium ones mix 0.8 and 0.1, dark ones are half as bright.
enum NQColorIdentifierEnum : int {
  NQ_COLOR_BLACK = 0,
  NQ_COLOR_BLUE = 1,
  NQ_COLOR_RED = 2,
  NQ_COLOR_GREEN = 3,
  NQ_COLOR_YELLOW = 4,
  NQ_COLOR_MAGENTA = 5,
  NQ_COLOR_CYAN = 6,
  NQ_COLOR_LIGHT_GREY = 7,
  NQ_COLOR_LIGHT_BLUE = 8,
  NQ_COLOR_LIGHT_RED = 9,
  NQ_COLOR_LIGHT_GREEN = 10,
  NQ_COLOR_LIGHT_YELLOW = 11,
  NQ_COLOR_LIGHT_MAGENTA = 12,
  NQ_COLOR_LIGHT_CYAN = 13,
  NQ_COLOR_GREY = 14,
  NQ_COLOR_MEDIUM_BLUE = 15,
  NQ_COLOR_MEDIUM_RED = 16,
  NQ_COLOR_MEDIUM_GREEN = 17,
  NQ_COLOR_MEDIUM_YELLOW = 18,
  NQ_COLOR_MEDIUM_MAGENTA = 19,
  NQ_COLOR_MEDIUM_CYAN = 20,
  NQ_COLOR_DARK_GREY = 21,
  NQ_COLOR_DARK_BLUE = 22,
  NQ_COLOR_DARK_RED = 23,
  NQ_COLOR_DARK_GREEN = 24,
  NQ_COLOR_DARK_YELLOW = 25,
  NQ_COLOR_DARK_MAGENTA = 26,
  NQ_COLOR_DARK_CYAN = 27,
  NQ_COLOR_WHITE = 28,
};

class NQ_EXPORT NQColor : public NQObject {
  NQ_COPY_VALUE(NQColor, NQObject)

 public:
  NQColor() = default;
  explicit NQColor(NQColorIdentifierEnum color) { rgb(color); }

  // As fractions, and as bytes.
  double red() const { return red_ / 255.0; }
  double green() const { return green_ / 255.0; }
  double blue() const { return blue_ / 255.0; }
  int ired() const { return red_; }
  int igreen() const { return green_; }
  int iblue() const { return blue_; }

  // The luminance: 0.299 red + 0.587 green + 0.114 blue, as a fraction.
  double gray() const { return green() * 0.587 + red() * 0.299 + blue() * 0.114; }

  // 1 less the fraction.
  double invertRed() const { return 1.0 - red(); }
  double invertGreen() const { return 1.0 - green(); }
  double invertBlue() const { return 1.0 - blue(); }
  double invertGray() const { return 1.0 - gray(); }
  // 255 less each byte, as transparent as this colour; needs saving.
  NQColor invertColor() const;

  int transparent() const { return (flags_ & kTransparent) != 0; }
  int needsSaving() const { return (flags_ & kNeedsSaving) != 0; }

  // Whether channels and transparency are equal; 0 for null.
  int compare(const NQColor* other) const {
    return other != nullptr && red_ == other->red_ && green_ == other->green_ &&
                   blue_ == other->blue_ && transparent() == other->transparent()
               ? 1
               : 0;
  }

  // compare(): needsSaving() is not looked at.
  friend bool operator==(const NQColor& a, const NQColor& b) {
    return a.compare(&b) != 0;
  }
  std::size_t hashValue() const { return nqHashOf(red_, green_, blue_, transparent()); }
  std::string asText() const { return hexText(); }

  // "#ff8000", and "#ff800000" when the colour is transparent.
  std::string hexText() const;

  // Writes the channels to `out`, which has room for 16 characters, as three
  // fractions of two digits: "1.00 0.50 0.00". Each is the smallest that reads back
  // as the byte or, where no such fraction gives it, as one above it. Always
  // answers 0, which callers must not take for success or failure.
  int setStringFromRGB(char* out) const;

  // Set a channel from a fraction, and answer with what is stored. A NaN is 0.
  double red(double fraction);
  double green(double fraction);
  double blue(double fraction);
  // The same for all three channels.
  double gray(double fraction);
  // Set a channel to the low 8 bits of `byte`, and answer with them.
  int ired(int byte);
  int igreen(int byte);
  int iblue(int byte);
  void rgb(double redFraction, double greenFraction, double blueFraction);
  // A colour of the palette; any other number changes nothing. The transparency
  // stays.
  void rgb(NQColorIdentifierEnum color);

  // Any value but 0 is 1. Both answer with what is stored.
  int transparent(int transparent) {
    if ((transparent != 0) != ((flags_ & kTransparent) != 0)) {
      flags_ = static_cast<unsigned char>((flags_ ^ kTransparent) | kNeedsSaving);
    }
    return this->transparent();
  }
  int needsSaving(int needsSaving);

  // Sets the channels to the first three words of `text`, decimal numbers that are
  // parted by spaces (and by nothing else); what follows a number in its word, and
  // the third word, is passed over, and a word that begins with no number is 0. 0,
  // and no change, when there are fewer words or `text` is null; else 1.
  int setRGBFromString(const char* text);
  // Sets the colour from "#rrggbb", which is opaque, or "#rrggbbaa", which is
  // transparent where aa is below 80; digits in either case. 0, and no change, for any
  // other text and null; else 1.
  int setFromHexText(const char* text);

 private:
  static constexpr unsigned char kNeedsSaving = 1;
  static constexpr unsigned char kTransparent = 2;

  void copyFields(const NQColor& source) {
    setByte(red_, source.red_);
    setByte(green_, source.green_);
    setByte(blue_, source.blue_);
    transparent(source.transparent());
  }
  void setByte(unsigned char& channel, unsigned char byte) {
    if (channel == byte) return;
    channel = byte;
    flags_ |= kNeedsSaving;
  }

  unsigned char red_ = 0;
  unsigned char green_ = 0;
  unsigned char blue_ = 0;
  unsigned char flags_ = kNeedsSaving;
};

NQ_COPY_VALUE_INLINE(NQColor)

#endif  // NQ_RESOURCES_COLOR_H
