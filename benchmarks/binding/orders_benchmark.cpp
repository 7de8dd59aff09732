// How fast documents are read into objects and written from them, beside the parser alone on the same octets, and how
// much memory that takes. Every operation proves its result before it is timed.
//
//   binding_benchmark [--sizes=1,10,100] [--rounds=1] [--no_memory] [--table=FILE] [the options of Google Benchmark]
//
//   --sizes      sizes of the documents in megabytes (10^6 bytes)
//   --rounds     how often everything is timed; the tables at the end take medians of single runs, not of aggregates
//   --no_memory  measure speed only
//   --table      also write the tables at the end as JSON, to this file
//
// Names are operation/size/layout/locale, such as "read/10MB/compact/posix", for --benchmark_filter. What uses generated
// classes or generic content has "/generated" or "/generic" at the end.

#include <benchmark/benchmark.h>
#include <expat.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "orders/operations.h"
#include "support/peak_memory.h"
#include "support/result_collector.h"

namespace {

using namespace Orders;

/// The settings of the process that decide how text is converted.
struct Setting {
  char const* name;
  char const* locale;
  bool asciiOnly;

  void Select() const {
    if (std::setlocale(LC_ALL, locale) == nullptr) throw std::runtime_error(std::string("no locale ") + locale);
    Quillon9::ASCIIOnly(asciiOnly);
  }
};
constexpr Setting kSettings[] = {{"posix", "C", true}, {"utf8", "C.UTF-8", false}};

/// The documents that are read and written.
struct Shape {
  unsigned megabytes;
  bool indented;

  std::uint64_t Bytes() const { return megabytes * std::uint64_t{1000000}; }
  std::string Name() const { return std::to_string(megabytes) + (indented ? "MB/indented" : "MB/compact"); }
  bool operator==(Shape const& other) const { return megabytes == other.megabytes && indented == other.indented; }
};

constexpr Operation const* kBound[] = {&kLoadTree, &kReadObjects, &kWriteObjects, &kReadInfoset, &kWriteInfoset};

constexpr Classes const* kClasses[] = {&kByHand, &kGenerated, &kGeneric};

/// The operations that use no classes have one name for all.
std::string Name(Operation const& operation, Shape shape, Setting const* setting, Classes const& classes) {
  std::string name = std::string(operation.name) + '/' + shape.Name();
  if (setting != nullptr) name = name + '/' + setting->name;
  return operation.bindsClasses && &classes != &kByHand ? name + '/' + classes.name : name;
}

/// Calls \p action and converts a failure of the library to a standard exception.
template <class Action>
void Translated(Action action) {
  try {
    action();
  } catch (Quillon9::CQnException const& failure) {
    throw std::runtime_error(failure.GetFullMessage());
  }
}

// ---- Speed

bool s_hasFailure = false;

/// The document of this shape. Keeps only the last one, because benchmarks of one shape follow one another.
Workload& WorkloadOf(Shape shape) {
  static std::unique_ptr<Workload> load;
  static Shape held{};
  if (load == nullptr || !(held == shape)) {
    load.reset();
    load = std::make_unique<Workload>(shape.Bytes(), shape.indented);
    held = shape;
  }
  return *load;
}

void TimeProven(benchmark::State& state, Operation const& operation, Workload& load) {
  if (operation.needsInfoset && load.infoset.GetLength() == 0) load.WriteInfoset();
  if (!operation.writes) {
    load.objects = nullptr;
  } else if (load.objects == nullptr) {
    load.ReadObjects();
  }
  Sums const sums = operation.prove(load);
  if (sums != load.document.sums) {
    throw std::runtime_error("wrong answer: " + sums.ToString() + " instead of " + load.document.sums.ToString());
  }
  std::size_t bytes = 0;
  for ([[maybe_unused]] auto const& iteration : state) bytes += operation.run(load);
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

void Time(benchmark::State& state, Operation const& operation, Shape shape, Setting const& setting,
          Classes const& classes) {
  try {
    setting.Select();
    Workload& load = WorkloadOf(shape);
    load.UseClasses(classes);
    Translated([&] { TimeProven(state, operation, load); });
  } catch (std::exception const& failure) {
    s_hasFailure = true;
    state.SkipWithError(failure.what());
  }
}

void Register(Operation const& operation, Shape shape, Setting const& setting, Classes const& classes) {
  auto const time = [=, &operation, &setting, &classes](benchmark::State& state) {
    Time(state, operation, shape, setting, classes);
  };
  benchmark::RegisterBenchmark(Name(operation, shape, &setting, classes).c_str(), time)->Unit(benchmark::kMillisecond);
}

// The parser does not depend on the locale, but is timed next to the operations that are compared with it.
void Register(Shape shape) {
  for (Setting const& setting : kSettings) {
    Register(kRawExpat, shape, setting, kByHand);
    for (Classes const* const classes : kClasses) {
      for (Operation const* const operation : kBound) {
        if (operation->bindsClasses || classes == &kByHand) Register(*operation, shape, setting, *classes);
      }
    }
  }
}

// ---- Memory

/// The peak memory that \p operation needs, in bytes for each byte of the document: for reading including the caller's
/// text; for writing including the objects and the written text.
std::optional<double> MemoryOf(Operation const& operation, Shape shape, Classes const& classes) {
  auto const peak = Benchmarks::PeakMemoryOf([&](Benchmarks::MemoryProbe& probe) {
    Translated([&] {
      kSettings[0].Select();
      Workload small(20000, shape.indented, classes);  // touches the code and builds the tables
      small.WriteInfoset();
      operation.prove(small);
      probe.Begin();
      Workload load(shape.Bytes(), shape.indented, classes);
      if (operation.needsInfoset) load.WriteInfoset();
      if (operation.writes) load.ReadObjects();
      if (operation.needsInfoset || operation.writes) {
        if (!operation.writes) load.objects = nullptr;
        load.document.text = std::string();
        probe.ForgetPeak();
      }
      operation.run(load);
    });
  });
  if (!peak) return std::nullopt;
  return static_cast<double>(*peak) / static_cast<double>(shape.Bytes());
}

using MemoryTable = std::map<std::string, double>;

MemoryTable MeasureMemory(std::vector<Shape> const& shapes) {
  MemoryTable table;
  auto const measure = [&](Operation const& operation, Shape shape, Classes const& classes) {
    auto const [cell, isNew] = table.try_emplace(Name(operation, shape, nullptr, classes), 0);
    if (!isNew) return;
    if (auto const memory = MemoryOf(operation, shape, classes)) {
      cell->second = *memory;
    } else {
      table.erase(cell);
      s_hasFailure = true;
    }
  };
  for (Shape const shape : shapes) {
    for (Classes const* const classes : kClasses) {
      for (Operation const* const operation : kBound) measure(*operation, shape, *classes);
    }
  }
  return table;
}

// ---- The tables at the end

/// A number in a column, or a dash where nothing was measured.
void PrintCell(std::optional<double> value, int width, int digits) {
  if (value) {
    std::printf("%*.*f", width, digits, *value);
  } else {
    std::printf("%*s", width, "-");
  }
}

void PrintSpeedRow(Benchmarks::ResultCollector const& results, Shape shape, Setting const& setting,
                   Classes const& classes) {
  std::string const yardstick = Name(kRawExpat, shape, &setting, classes);
  std::optional<double> const expat = results.Speed(yardstick);
  std::printf("%-16s %-6s %-9s", shape.Name().c_str(), setting.name, classes.name);
  PrintCell(expat ? std::optional(*expat / 1e6) : std::nullopt, 9, 1);
  for (Operation const* const operation : kBound) {
    std::string const name = Name(*operation, shape, &setting, classes);
    std::optional<double> const speed = results.Speed(name);
    PrintCell(speed ? std::optional(*speed / 1e6) : std::nullopt, 11, 1);
    PrintCell(results.Ratio(name, yardstick), 6, 2);
  }
  std::printf("\n");
}

void PrintSpeed(Benchmarks::ResultCollector const& results, std::vector<Shape> const& shapes) {
  std::printf(
      "\nSpeed: MB of document per second of processor time, and ratio to raw expat on the same document in the same "
      "round\n\n");
  std::printf("%-16s %-6s %-9s%9s", "document", "locale", "classes", "expat");
  for (Operation const* const operation : kBound) std::printf("%11s%6s", operation->name, "ratio");
  std::printf("\n");
  for (Shape const shape : shapes) {
    for (Setting const& setting : kSettings) {
      for (Classes const* const classes : kClasses) PrintSpeedRow(results, shape, setting, *classes);
    }
  }
}

void PrintMemoryRow(MemoryTable const& table, Shape shape, Classes const& classes) {
  std::printf("%-16s %-9s", shape.Name().c_str(), classes.name);
  for (Operation const* const operation : kBound) {
    auto const cell = table.find(Name(*operation, shape, nullptr, classes));
    PrintCell(cell != table.end() ? std::optional(cell->second) : std::nullopt, 11, 1);
  }
  std::printf("\n");
}

void PrintMemory(MemoryTable const& table, std::vector<Shape> const& shapes) {
  std::printf("\nPeak memory: bytes per byte of document, the caller's text included\n\n");
  std::printf("%-16s %-9s", "document", "classes");
  for (Operation const* const operation : kBound) std::printf("%11s", operation->name);
  std::printf("\n");
  for (Shape const shape : shapes) {
    for (Classes const* const classes : kClasses) PrintMemoryRow(table, shape, *classes);
  }
}

std::vector<SizeRow> MeasureSizes() {
  std::vector<SizeRow> rows;
  Translated([&] {
    kSettings[0].Select();
    Workload load(1000000, false);
    rows = SizesOf(load);
  });
  return rows;
}

void PrintSizes(std::vector<SizeRow> const& rows) {
  std::printf("\nSize of a document of 1 MB, and in proportion to XML\n\n");
  for (SizeRow const& row : rows) {
    std::printf("%-34s%9zu%6.2f\n", row.form, row.octets,
                static_cast<double>(row.octets) / static_cast<double>(rows.front().octets));
  }
}

// ---- The same as JSON: a row for each document, setting and set of classes, null where nothing was measured

struct Number {
  std::optional<double> value;
  friend std::ostream& operator<<(std::ostream& out, Number number) {
    return number.value ? out << *number.value : out << "null";
  }
};

void WriteJsonRow(std::ostream& out, Benchmarks::ResultCollector const& results, MemoryTable const& memory, Shape shape,
                  Setting const& setting, Classes const& classes) {
  std::string const yardstick = Name(kRawExpat, shape, &setting, classes);
  out << "    {\"document\": \"" << shape.Name() << "\", \"setting\": \"" << setting.name << "\", \"classes\": \""
      << classes.name << "\", \"expat_bytes_per_second\": " << Number{results.Speed(yardstick)};
  for (Operation const* const operation : kBound) {
    std::string const name = Name(*operation, shape, &setting, classes);
    auto const cell = memory.find(Name(*operation, shape, nullptr, classes));
    out << ",\n     \"" << operation->name << "\": {\"bytes_per_second\": " << Number{results.Speed(name)}
        << ", \"ratio_to_expat\": " << Number{results.Ratio(name, yardstick)}
        << ", \"memory_per_byte\": " << Number{cell != memory.end() ? std::optional(cell->second) : std::nullopt}
        << '}';
  }
  out << '}';
}

void WriteJson(std::string const& path, Benchmarks::ResultCollector const& results, MemoryTable const& memory,
               std::vector<Shape> const& shapes, std::vector<SizeRow> const& sizes) {
  std::ofstream out(path);
  out << "{\"expat\": \"" << XML_ExpatVersion() << "\",\n  \"rows\": [\n";
  char const* separator = "";
  for (Shape const shape : shapes) {
    for (Setting const& setting : kSettings) {
      for (Classes const* const classes : kClasses) {
        out << std::exchange(separator, ",\n");
        WriteJsonRow(out, results, memory, shape, setting, *classes);
      }
    }
  }
  out << "],\n  \"octets_of_1MB\": {";
  separator = "";
  for (SizeRow const& row : sizes) out << std::exchange(separator, ", ") << '"' << row.form << "\": " << row.octets;
  out << "}}\n";
  out.close();
  if (!out) throw std::runtime_error("cannot write " + path);
}

// ---- Options

struct Options {
  std::vector<unsigned> megabytes = {1, 10, 100};
  unsigned rounds = 1;
  bool memory = true;
  std::string table;
};

/// Contains 0 for each item that is not a number.
std::vector<unsigned> ParseSizes(std::string const& list) {
  std::vector<unsigned> sizes;
  std::istringstream items(list);
  for (std::string item; std::getline(items, item, ',');) {
    sizes.push_back(static_cast<unsigned>(std::strtoul(item.c_str(), nullptr, 10)));
  }
  return sizes;
}

/// False for an unknown option. Google Benchmark has already removed its own options.
bool Parse(int argc, char** argv, Options& options) {
  constexpr char kSizes[] = "--sizes=";
  constexpr char kRounds[] = "--rounds=";
  constexpr char kTable[] = "--table=";
  for (int i = 1; i < argc; ++i) {
    if (std::strncmp(argv[i], kSizes, sizeof kSizes - 1) == 0) {
      options.megabytes = ParseSizes(argv[i] + sizeof kSizes - 1);
      for (unsigned const size : options.megabytes) {
        if (size == 0 || size > 1000) return false;  // in one call of the parser
      }
    } else if (std::strncmp(argv[i], kRounds, sizeof kRounds - 1) == 0) {
      options.rounds = static_cast<unsigned>(std::strtoul(argv[i] + sizeof kRounds - 1, nullptr, 10));
    } else if (std::strncmp(argv[i], kTable, sizeof kTable - 1) == 0) {
      options.table = argv[i] + sizeof kTable - 1;
    } else if (std::strcmp(argv[i], "--no_memory") == 0) {
      options.memory = false;
    } else {
      return false;
    }
  }
  return !options.megabytes.empty() && options.rounds >= 1 && options.rounds <= 1000;
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  Options options;
  if (!Parse(argc, argv, options)) {
    std::fprintf(stderr, "usage: %s [--sizes=1,10,100] [--rounds=1] [--no_memory] [--table=FILE] [--benchmark_...]\n",
                 argv[0]);
    return 2;
  }
  std::vector<Shape> shapes;
  for (unsigned const size : options.megabytes) {
    for (bool const indented : {false, true}) shapes.push_back({size, indented});
  }
  // First, while this process has nothing that a child would inherit.
  MemoryTable const memory = options.memory ? MeasureMemory(shapes) : MemoryTable();
  for (Shape const shape : shapes) Register(shape);
  benchmark::AddCustomContext("expat", XML_ExpatVersion());
  Benchmarks::ResultCollector results;
  for (unsigned round = 0; round < options.rounds; ++round) benchmark::RunSpecifiedBenchmarks(&results);
  PrintSpeed(results, shapes);
  if (options.memory) PrintMemory(memory, shapes);
  std::vector<SizeRow> const sizes = MeasureSizes();
  PrintSizes(sizes);
  if (!options.table.empty()) WriteJson(options.table, results, memory, shapes, sizes);
  benchmark::Shutdown();
  return s_hasFailure ? 1 : 0;
}
