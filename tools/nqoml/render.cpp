#include "tools/nqoml/render.h"

#include "tools/nqoml/source.h"
#include "tools/nqoml/text.h"

#include <algorithm>

namespace nqoml {

namespace {

// The colours of a terminal, or nothing.
struct Paint {
  explicit Paint(bool on)
      : error(on ? "\x1b[1;31m" : ""),
        warning(on ? "\x1b[1;35m" : ""),
        note(on ? "\x1b[1;36m" : ""),
        mark(on ? "\x1b[1;32m" : ""),
        gutter(on ? "\x1b[2m" : ""),
        off(on ? "\x1b[0m" : "") {}

  const char* error;
  const char* warning;
  const char* note;
  const char* mark;
  const char* gutter;
  const char* off;
};

const char* severityName(Severity severity) {
  switch (severity) {
    case Severity::kWarning:
      return "warning";
    case Severity::kError:
      return "error";
    case Severity::kFatal:
      return "fatal error";
  }
  return "";
}

// Of a binary file, which is one line whatever its bytes, the bytes around.
void renderExcerpt(std::ostream& out, const Place& place, SourceCache& sources,
                   bool binary, const Paint& paint) {
  if (!place.known()) return;
  const SourceText* source = sources.find(place.file);
  if (source == nullptr) return;
  const Excerpt shown =
      excerpt(binary ? source->text() : source->line(place.line), place.column);
  const std::string number = std::to_string(place.line);
  const std::string margin(number.size() < 5 ? 5 - number.size() : 0, ' ');
  out << paint.gutter << margin << number << " | " << paint.off << shown.text << '\n'
      << paint.gutter << std::string(margin.size() + number.size(), ' ') << " | "
      << paint.off << paint.mark << shown.mark << paint.off << '\n';
}

std::string placeText(const Place& place) {
  return printable(place.file) + ":" + std::to_string(place.line) + ":" +
         std::to_string(place.column);
}

std::string counted(long count, const char* what) {
  return (count == 0 ? "no" : std::to_string(count)) + " " + what +
         (count == 1 ? "" : "s");
}

void jsonPlace(std::string& out, const Place& place) {
  out += "\"file\":";
  if (place.file.empty()) {
    out += "null";
  } else {
    appendJsonString(out, place.file);
  }
  for (const auto& [name, value] :
       {std::pair("line", place.line), {"column", place.column}}) {
    out +=
        std::string(",\"") + name + "\":" + (value < 0 ? "null" : std::to_string(value));
  }
}

void jsonDiagnostic(std::string& out, const Diagnostic& diagnostic) {
  out += "{\"severity\":\"";
  out += diagnostic.severity == Severity::kWarning ? "warning" : "error";
  out += "\",\"fatal\":";
  out += diagnostic.severity == Severity::kFatal ? "true" : "false";
  out += ",\"code\":" + (diagnostic.code < 0 ? "null" : std::to_string(diagnostic.code)) +
         ",";
  jsonPlace(out, diagnostic.place);
  out += ",\"text\":";
  appendJsonString(out, diagnostic.text);
  out += ",\"message\":";
  appendJsonString(out, diagnostic.message);
  out += ",\"notes\":[";
  const char* between = "";
  for (const Note& note : diagnostic.notes) {
    out += between;
    out += "{\"text\":";
    appendJsonString(out, note.text);
    if (note.place.known()) {
      out += ',';
      jsonPlace(out, note.place);
    }
    out += '}';
    between = ",";
  }
  out += "]}";
}

}  // namespace

long Report::errors() const {
  return static_cast<long>(diagnostics.size()) - warnings();
}

long Report::warnings() const {
  return static_cast<long>(std::count_if(
      diagnostics.begin(), diagnostics.end(), [](const Diagnostic& diagnostic) {
        return diagnostic.severity == Severity::kWarning;
      }));
}

void renderText(std::ostream& out, const Report& report, SourceCache& sources,
                bool color) {
  const Paint paint(color);
  Place shown;  // the last line shown for a diagnostic: a note need not repeat it
  for (const Diagnostic& diagnostic : report.diagnostics) {
    const char* tint =
        diagnostic.severity == Severity::kWarning ? paint.warning : paint.error;
    out << tint << printable(diagnostic.message) << paint.off << '\n';
    renderExcerpt(out, diagnostic.place, sources, report.binary, paint);
    for (const Note& note : diagnostic.notes) {
      out << "      " << paint.note << (note.place.known() ? "note: " : "hint: ")
          << paint.off << printable(note.text);
      if (note.place.known()) out << " (" << placeText(note.place) << ')';
      out << '\n';
      if (note.place != shown) {
        renderExcerpt(out, note.place, sources, report.binary, paint);
      }
    }
    shown = diagnostic.place;
  }
}

void renderSummary(std::ostream& out, const std::vector<Report>& reports, bool color) {
  const Paint paint(color);
  long errors = 0;
  long warnings = 0;
  long unread = 0;
  for (const Report& report : reports) {
    errors += report.errors();
    warnings += report.warnings();
    unread += report.trouble.empty() ? 0 : 1;
  }
  out << (errors > 0 || unread > 0 ? paint.error : paint.mark)
      << counted(static_cast<long>(reports.size()) - unread, "file")
      << " checked: " << counted(errors, "error");
  if (warnings > 0) out << ", " << counted(warnings, "warning");
  if (unread > 0) out << ", " << counted(unread, "file") << " not read";
  out << paint.off << '\n';
}

void renderGcc(std::ostream& out, const Report& report) {
  for (const Diagnostic& diagnostic : report.diagnostics) {
    out << (diagnostic.place.known() ? placeText(diagnostic.place)
                                     : printable(report.file))
        << ": " << severityName(diagnostic.severity) << ": "
        << printable(diagnostic.text);
    if (diagnostic.code >= 0) out << " [#" << diagnostic.code << ']';
    out << '\n';
    for (const Note& note : diagnostic.notes) {
      const Place& place = note.place.known() ? note.place : diagnostic.place;
      out << (place.known() ? placeText(place) : printable(report.file))
          << ": note: " << printable(note.text) << '\n';
    }
  }
}

void renderJson(std::ostream& out, const std::vector<Report>& reports) {
  out << "{\"files\":[";
  const char* between = "\n";
  for (const Report& report : reports) {
    std::string text = "{\"file\":";
    appendJsonString(text, report.file);
    text += ",\"read\":";
    text += report.trouble.empty() ? "true" : "false";
    if (!report.trouble.empty()) {
      text += ",\"trouble\":";
      appendJsonString(text, report.trouble);
    }
    text += ",\"errors\":" + std::to_string(report.errors()) +
            ",\"warnings\":" + std::to_string(report.warnings()) + ",\"diagnostics\":[";
    const char* comma = "\n ";
    for (const Diagnostic& diagnostic : report.diagnostics) {
      text += comma;
      jsonDiagnostic(text, diagnostic);
      comma = ",\n ";
    }
    out << between << text << "]}";
    between = ",\n";
  }
  out << "\n]}\n";
}

}  // namespace nqoml
