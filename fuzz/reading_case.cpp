#include "reading_case.h"

#include "descriptors/reading_allowance.h"
#include "dynamic_class.h"
#include "fuzzing.h"
#include "reading_classes.h"
#include "reading_model.h"

namespace Reading {

using namespace Quillon9;

namespace {

/// The class and text of each failure of a chain.
std::string ChainOf(CQnException const& failure) {
  std::string text;
  for (CQnException const* link = &failure; link != nullptr; link = link->GetInnerException()) {
    text += std::string(typeid(*link).name()) + ": " + link->GetMessage() + "\n";
  }
  return text;
}

template <class Read>
std::string FailureOf(Read const& read) {
  try {
    read();
    return "";
  } catch (CQnException const& failure) {
    return ChainOf(failure);
  }
}

std::string Joined(Log const& log) {
  std::string text;
  for (std::string const& item : log) text += item + "\n";
  return text;
}

}  // namespace

void RunCase(Case const& tried, Compared compared) {
  CXmlSerializationContext const ctx = Testing::Ignoring(tried.ignoring);
  World world(tried.schema);
  CSmartPtr<CXmlGeneratedClass> const object = MakeRoot();
  Model model(tried.schema, ctx);
  for (std::string const& text : tried.documents) {
    CXmlDocument document(ctx);
    document.LoadXml(text.c_str());
    std::string const got = FailureOf([&] { object->FromXml(text.c_str(), ctx); });
    std::string const expected = FailureOf([&] { model.Read(document.GetDocumentElement()); });
    std::string const about = Describe(tried) + "in the document " + text + "\n";
    Fuzzing::RequireEqual(got, expected, (about + "the failure").c_str());
    Fuzzing::RequireEqual(ValuesOf(*object), model.Values(), (about + "the values").c_str());
    if (compared == Compared::kResults) continue;
    bool const isSame = world.m_log == model.m_log;
    Fuzzing::Require(isSame, (about + "the calls").c_str(), isSame ? "" : Joined(world.m_log),
                     isSame ? "" : Joined(model.m_log));
  }
}

namespace {

struct Sink : IFailureSink {
  explicit Sink(bool goesOn) : m_goesOn(goesOn) {}
  bool OnFailure(CFailure const& failure) override {
    if (failure.GetSeverity() == FailureSeverity_Error) m_errors.push_back(failure.GetReport());
    return m_goesOn;
  }
  bool m_goesOn;
  std::vector<std::string> m_errors;
};

struct Outcome {
  std::string failure;
  std::string values;
  std::string calls;
};

Outcome OutcomeOf(Case const& tried, std::string const& document, IFailureSink* sink, bool keepsUnknown = false) {
  CXmlSerializationContext ctx = Testing::Ignoring(tried.ignoring);
  ctx.SetFailureSink(sink);
  ctx.SetKeepUnknown(keepsUnknown);
  World world(tried.schema);
  CSmartPtr<CXmlGeneratedClass> const object = MakeRoot();
  std::string const failure = FailureOf([&] { object->FromXml(document.c_str(), ctx); });
  return {failure, ValuesOf(*object), Joined(world.m_log)};
}

}  // namespace

void RunWithSinks(Case const& tried) {
  for (std::string const& document : tried.documents) {
    std::string const about = Describe(tried) + "in the document " + document + "\n";
    Outcome const without = OutcomeOf(tried, document, nullptr);
    Outcome const kept = OutcomeOf(tried, document, nullptr, true);
    Fuzzing::RequireEqual(kept.failure, without.failure, (about + "the failure of a read that keeps all").c_str());
    Fuzzing::RequireEqual(kept.values, without.values, (about + "the values of a read that keeps all").c_str());
    Fuzzing::RequireEqual(kept.calls, without.calls, (about + "the calls of a read that keeps all").c_str());
    Sink stopping(false);
    Outcome const stopped = OutcomeOf(tried, document, &stopping);
    Fuzzing::RequireEqual(stopped.failure, without.failure, (about + "the failure of a read that was stopped").c_str());
    Fuzzing::RequireEqual(stopped.values, without.values, (about + "the values of a read that was stopped").c_str());
    Fuzzing::RequireEqual(stopped.calls, without.calls, (about + "the calls of a read that was stopped").c_str());
    Sink patient(true);
    Outcome const all = OutcomeOf(tried, document, &patient);
    Fuzzing::Require(patient.m_errors.empty() == without.failure.empty(), (about + "the failures").c_str(),
                     Joined(patient.m_errors), without.failure);
    if (without.failure.empty()) {
      Fuzzing::RequireEqual(all.values, without.values, (about + "the values of a read with a sink").c_str());
      Fuzzing::RequireEqual(all.calls, without.calls, (about + "the calls of a read with a sink").c_str());
    } else {
      Fuzzing::RequireEqual(patient.m_errors.front(), stopping.m_errors.front(), (about + "the first failure").c_str());
    }
  }
}

std::size_t StepsOf(Schema const& schema, std::string const& ignoring, std::string const& document) {
  World const world(schema);
  CSmartPtr<CXmlGeneratedClass> const object = MakeRoot();
  std::uint64_t const before = ReadingAllowance::t_steps;
  FailureOf([&] { object->FromXml(document.c_str(), Testing::Ignoring(ignoring)); });
  return ReadingAllowance::t_steps - before;
}

}  // namespace Reading
