#include "tools/nqoml/progress.h"

#include "tools/nqoml/terminal.h"
#include "tools/nqoml/text.h"

#include <algorithm>
#include <boost/timer/progress_display.hpp>
#include <ostream>

namespace nqoml {

namespace {

constexpr unsigned long kSteps = 1000;  // of a whole bar, whatever it stands for

}  // namespace

struct Progress::Bar {
  Bar(std::ostream& out, const std::string& label) : display(kSteps, out, label + '\n') {}

  boost::timer::progress_display display;
};

Progress::Progress(std::ostream& out, When when, const std::string& label,
                   std::int64_t least)
    : out_(out),
      label_(printable(label)),
      least_(when == When::kAlways ? 1 : least),
      shown_(when == When::kAlways || (when == When::kAuto && errorsShowProgress())) {}

Progress::~Progress() {
  if (bar_ && bar_->display.count() < kSteps) out_ << std::endl;
}

void Progress::at(std::int64_t done, std::int64_t total) {
  if (!shown_ || total < least_) return;
  if (!bar_) bar_ = std::make_unique<Bar>(out_, label_);
  const double part = static_cast<double>(done) / static_cast<double>(total);
  const auto step = static_cast<unsigned long>(std::clamp(part, 0.0, 1.0) * kSteps);
  const unsigned long shown = bar_->display.count();
  if (step > shown) bar_->display += step - shown;
}

}  // namespace nqoml
