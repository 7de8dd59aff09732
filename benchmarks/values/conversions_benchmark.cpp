// How many values of each kind are parsed and printed in a second through the variant, as reading and writing do it.
// Every conversion proves its result before it is timed.

#include <benchmark/benchmark.h>

#include <stdexcept>
#include <string>

#include "quillon9/quillon9.h"

namespace {

using namespace Quillon9;

/// A text that is printed exactly as it was read.
struct Sample {
  ItemType type;
  char const* name;
  char const* text;
};

constexpr Sample kSamples[] = {
    {ItemType_hexBinary, "hexBinary", "0123456789ABCDEF0123456789ABCDEF"},
    {ItemType_base64Binary, "base64Binary", "TWFuIGlzIGRpc3Rpbmd1aXNoZWQ="},
    {ItemType_i1, "i1", "-128"},
    {ItemType_i2, "i2", "-32768"},
    {ItemType_i4, "i4", "-2147483648"},
    {ItemType_i8, "i8", "-9223372036854775808"},
    {ItemType_ui1, "ui1", "255"},
    {ItemType_ui2, "ui2", "65535"},
    {ItemType_ui4, "ui4", "4294967295"},
    {ItemType_ui8, "ui8", "18446744073709551615"},
    {ItemType_r4, "r4", "3.141593"},
    {ItemType_r8, "r8", "47.376887123"},
    {ItemType_duration, "duration", "P1Y2M3DT4H5M6.789S"},
    {ItemType_yearMonth, "yearMonth", "2024-03"},
    {ItemType_monthDay, "monthDay", "--03-18"},
    {ItemType_year, "year", "2024"},
    {ItemType_month, "month", "--12"},
    {ItemType_day, "day", "---31"},
    {ItemType_date, "date", "2024-03-18"},
    {ItemType_datetime, "datetime", "2024-03-18T12:34:56.789+01:00"},
    {ItemType_time, "time", "12:34:56.789Z"},
    {ItemType_char, "char", "c"},
    {ItemType_string, "string", "Lawn mower, 42 cm, with a box for the grass"},
    {ItemType_boolean, "boolean", "true"},
    {ItemType_decimal, "decimal", "1234567.89"},
    {ItemType_integer, "integer", "123456789012345678901234567890"},
};

QnVariant ValueOf(Sample const& sample) {
  QnVariant value;
  value.FromString(sample.text, sample.type, CWhitespaceUtils::WhitespaceRule_Collapse);
  return value;
}

void Prove(Sample const& sample) {
  std::string printed;
  try {
    printed = ValueOf(sample).ToString();
  } catch (CQnException const& failure) {
    throw std::runtime_error(std::string(sample.name) + ": " + failure.GetFullMessage());
  }
  if (printed != sample.text) {
    throw std::runtime_error(std::string(sample.name) + " gave " + printed + " for " + sample.text);
  }
}

void Parse(benchmark::State& state, Sample const& sample) {
  Prove(sample);
  std::string const text = sample.text;
  for ([[maybe_unused]] auto const& iteration : state) {
    QnVariant value;
    value.FromString(text, sample.type, CWhitespaceUtils::WhitespaceRule_Collapse);
    benchmark::DoNotOptimize(value);
  }
  state.SetItemsProcessed(state.iterations());
}

void Print(benchmark::State& state, Sample const& sample) {
  Prove(sample);
  QnVariant const value = ValueOf(sample);
  for ([[maybe_unused]] auto const& iteration : state) benchmark::DoNotOptimize(value.ToString());
  state.SetItemsProcessed(state.iterations());
}

bool RegisterAll() {
  for (Sample const& sample : kSamples) {
    std::string const name = sample.name;
    benchmark::RegisterBenchmark(("parse/" + name).c_str(), [&sample](benchmark::State& state) {
      Parse(state, sample);
    })->MinTime(0.05);
    benchmark::RegisterBenchmark(("print/" + name).c_str(), [&sample](benchmark::State& state) {
      Print(state, sample);
    })->MinTime(0.05);
  }
  return true;
}

[[maybe_unused]] bool const s_registered = RegisterAll();

}  // namespace
