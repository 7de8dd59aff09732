// Reads GPX documents and prints for each track what its points show: its length, its duration, and how far it goes up
// and down.
//
//   gpx_track [document...]

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "gpx.h"
#include "quillon9/quillon9.h"

using namespace Gpx;
using namespace Quillon9;

namespace {

// ---- Reading

/// Return whether the element belongs to another vocabulary than its document.
bool IsForeign(CXmlElement* element) {
  return element->GetNamespaceURI() != element->GetDocument()->GetDocumentElement()->GetNamespaceURI();
}

/// Text is in UTF-8, as in the classes. Elements that the classes do not bind are skipped. Namespaces are ignored, so that GPX 1.0, which has a different
/// one, can be read too.
CXmlSerializationContext LenientContext() {
  CXmlSerializationContext ctx;
  ctx.SetTextEncoding(TextEncoding_UTF8);
  ctx.SetIgnoreUnknownElements(true);
  ctx.SetIgnoreNamespaces(true);
  return ctx;
}

/// Return the document that \p load loads. Foreign elements are dropped during parsing: without namespaces they could
/// be mistaken for members, and in GPX 1.0 some members may follow them.
template <class Load>
CSmartPtr<CGpxType> Read(Load load) {
  CXmlSerializationContext const ctx = LenientContext();
  CXmlDocument document(&IsForeign, ctx);
  load(document);
  CSmartPtr<CGpxType> gpx = CGpxType::CreateInstance();
  gpx->FromXmlElement(document.GetDocumentElement(), ctx);
  // Reading accepts any number. Writing checks the bounds, so the object is written once, only for that check.
  gpx->ToXmlStream();
  return gpx;
}

// ---- What the points show

constexpr double kPi = 3.14159265358979323846;

double Radians(double degrees) { return degrees * kPi / 180; }

/// Return the distance in metres over a sphere of the Earth's mean radius (the R1 of the Geodetic Reference System
/// 1980), by R. W. Sinnott, "Virtues of the Haversine", Sky and Telescope 68 (1984), p. 159. It is accurate to about
/// 0.5 %.
double Distance(CWptType const& a, CWptType const& b) {
  constexpr double kRadius = 6371008.7714;
  double const byLat = std::sin(Radians(b.GetLat() - a.GetLat()) / 2);
  double const byLon = std::sin(Radians(b.GetLon() - a.GetLon()) / 2);
  double const h = byLat * byLat + std::cos(Radians(a.GetLat())) * std::cos(Radians(b.GetLat())) * byLon * byLon;
  return 2 * kRadius * std::asin(std::min(1.0, std::sqrt(h)));
}

/// Seconds and nanoseconds on a scale that any two times share. (Subtracting one CDateTime from another gives zero.)
using Instant = std::pair<std::int64_t, std::int64_t>;

Instant InstantOf(CDateTime const& time) {
  CDateTime const utc = time.GetNormalized();
  std::int64_t const years = utc.GetYear() + 9999;  // complete years of the Gregorian calendar since the year -9999
  bool const afterLeapDay = IsLeapYear(utc.GetYear()) && utc.GetMonth() > 2;
  std::int64_t const days = 365 * years + years / 4 - years / 100 + years / 400 + g_monthDayInYear[utc.GetMonth() - 1] +
                            utc.GetDay() + (afterLeapDay ? 1 : 0);
  std::int64_t const minutes = (days * 24 + utc.GetHour()) * 60 + utc.GetMinute();
  return {minutes * 60 + utc.GetSecond(),
          (utc.GetMilliSecond() * 1000 + utc.GetMicroSecond()) * 1000 + utc.GetNanoSecond()};
}

CDateTimeSpan SpanBetween(Instant from, Instant to) {
  bool const negative = to < from;
  if (negative) std::swap(from, to);
  std::int64_t seconds = to.first - from.first;
  std::int64_t nanos = to.second - from.second;
  if (nanos < 0) {
    nanos += 1000000000;
    --seconds;
  }
  CDateTimeSpan span(0, 0, static_cast<std::uint32_t>(seconds / 86400), static_cast<std::uint32_t>(seconds / 3600 % 24),
                     static_cast<std::uint64_t>(seconds / 60 % 60), static_cast<std::uint64_t>(seconds % 60),
                     static_cast<std::uint16_t>(nanos / 1000000), static_cast<std::uint16_t>(nanos / 1000 % 1000),
                     static_cast<std::uint16_t>(nanos % 1000));
  if (negative) span.Negate();
  return span;
}

struct Figures {
  int segments = 0;
  int points = 0;
  int timedPoints = 0;
  std::optional<double> length;   // metres
  std::optional<double> climb;    // metres
  std::optional<double> descent;  // metres
  std::optional<CDateTime> start;
  std::optional<CDateTime> end;
};

/// The gaps between segments add nothing. Figures that need two points stay unset until there are two. A point without
/// elevation does not contribute to climb and descent.
void AddSegment(Figures& figures, CTrksegType const& segment) {
  CWptType const* previous = nullptr;
  std::optional<double> height;
  ++figures.segments;
  for (CWptType const& point : segment.GetTrkpt()) {
    ++figures.points;
    if (previous != nullptr) figures.length = figures.length.value_or(0) + Distance(*previous, point);
    previous = &point;
    if (point.GetTime()) {
      ++figures.timedPoints;
      if (!figures.start) figures.start = point.GetTime();
      figures.end = point.GetTime();
    }
    if (!point.GetEle() || !std::isfinite(*point.GetEle())) continue;
    if (height) {
      double const step = *point.GetEle() - *height;
      figures.climb = figures.climb.value_or(0) + std::max(step, 0.0);
      figures.descent = figures.descent.value_or(0) + std::max(-step, 0.0);
    }
    height = point.GetEle();
  }
}

// ---- Printing

std::string Shown(std::optional<std::string> const& text) {
  return text ? CWhitespaceUtils::Collapse(*text) : "-";  // puts a text of several lines on one line
}

std::string Shown(std::optional<CDateTime> const& time) { return time ? time->ToString() : "-"; }

std::string Shown(std::optional<double> const& metres) { return metres ? FormatString("%.1f m", *metres) : "-"; }

std::string ShownKilometres(std::optional<double> const& metres) {
  return metres ? FormatString("%.3f km", *metres / 1000) : "-";
}

std::string ShownDuration(Figures const& figures) {
  // A time without a zone may be anywhere: its difference from a time with a zone is unknown.
  if (figures.timedPoints < 2 || figures.start->IsUTC() != figures.end->IsUTC()) return "-";
  Instant const from = InstantOf(*figures.start);
  Instant const to = InstantOf(*figures.end);
  return from == to ? "PT0S" : SpanBetween(from, to).ToString();
}

void PrintLine(char const* indent, char const* label, std::string const& value) {
  std::printf("%s%-10s%s\n", indent, label, value.c_str());
}

void PrintTrack(CTrkType const& track) {
  Figures figures;
  for (CTrksegType const& segment : track.GetTrkseg()) AddSegment(figures, segment);
  PrintLine("  ", "track", Shown(track.GetName()));
  PrintLine("    ", "segments", std::to_string(figures.segments));
  PrintLine("    ", "points", std::to_string(figures.points));
  PrintLine("    ", "length", ShownKilometres(figures.length));
  PrintLine("    ", "start", Shown(figures.start));
  PrintLine("    ", "end", Shown(figures.end));
  PrintLine("    ", "duration", ShownDuration(figures));
  PrintLine("    ", "climb", Shown(figures.climb));
  PrintLine("    ", "descent", Shown(figures.descent));
}

void PrintDocument(char const* path, CGpxType const& gpx) {
  CMetadataType const* const metadata = gpx.GetMetadata();
  std::printf("%s\n", std::filesystem::path(path).filename().c_str());
  PrintLine("  ", "creator", "GPX " + gpx.GetVersion() + " by " + CWhitespaceUtils::Collapse(gpx.GetCreator()));
  PrintLine("  ", "name", Shown(metadata != nullptr ? metadata->GetName() : gpx.GetName()));
  PrintLine("  ", "time", Shown(metadata != nullptr ? metadata->GetTime() : gpx.GetTime()));
  PrintLine("  ", "tracks", std::to_string(gpx.GetTrk().size()));
  for (CTrkType const& track : gpx.GetTrk()) PrintTrack(track);
  std::printf("\n");
}

// ---- The steps

/// Return whether the document \p path could be read. If not, standard error says why.
bool PrintFile(char const* path) {
  try {
    PrintDocument(path, *Read([path](CXmlDocument& document) { document.Load(path); }));
    return true;
  } catch (CQnException const& failure) {
    std::fprintf(stderr, "%s: %s\n", path, failure.GetFullMessage().c_str());
  } catch (std::exception const& failure) {
    std::fprintf(stderr, "%s: %s\n", path, failure.what());
  }
  return false;
}

/// Print \p failure and its causes, outermost first.
void PrintChain(CQnException const& failure) {
  for (CQnException const* link = &failure; link != nullptr; link = link->GetInnerException()) {
    std::printf("  %s\n", link->GetMessage().c_str());
  }
}

/// Return whether a point beyond the pole is refused, as it should be.
bool ShowFailure() {
  std::printf("Failures\n--------\nA latitude of 91 degrees:\n");
  try {
    Read([](CXmlDocument& document) {
      document.LoadXml(
          "<gpx version='1.1' creator='gpx_track' xmlns='http://www.topografix.com/GPX/1/1'>"
          "<trk><trkseg><trkpt lat='91' lon='8.5'/></trkseg></trk></gpx>");
    });
  } catch (CQnException const& failure) {
    PrintChain(failure);
    return true;
  }
  std::printf("  was read without a failure\n");
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 1) return PrintFile(GPX_TRACK_DOCUMENT) && ShowFailure() ? 0 : 1;
  bool ok = true;
  for (int i = 1; i < argc; ++i) ok &= PrintFile(argv[i]);
  return ok ? 0 : 1;
}
