#include "generated/content_reader.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <limits>
#include <utility>

#include "binding/failure_report.h"
#include "generated/bound_access.h"
#include "generated/members.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {

using namespace Quillon9Data;

namespace {

class Frame;

/// The element whose children are read, with the rounds of repeated groups that they fill.
struct Content {
  CXmlSerializationContext const& ctx;
  CXmlElement* const parent;
  CXmlElement* cursor;
  bool hasFailed = false;
  CXmlElement const* refused = nullptr;  ///< the last child that nothing may take where it stands
  // A failure that ends the read leaves from the place where it would do so without a sink.
  Frame const* stopsAt = nullptr;
  std::exception_ptr stop = nullptr;

  CXmlElement* Next() const { return cursor->GetNextSiblingElement(); }
};

/// A group, collection or class that is being read, in the one around it.
class Frame {
 public:
  virtual ~Frame() { t_innermost = m_saved; }
  Frame(Frame const&) = delete;
  Frame& operator=(Frame const&) = delete;

  /// The innermost frame that reads children of \p parent, or null.
  static Frame* Of(CXmlElement const* parent) {
    return t_innermost != nullptr && t_innermost->m_content.parent == parent ? t_innermost : nullptr;
  }
  Content& GetContent() const { return m_content; }

 protected:
  Frame(Content& content, CXmlGeneratedClass& holder)
      : m_content(content),
        m_holder(holder),
        m_saved(t_innermost),
        m_outer(t_innermost != nullptr && &t_innermost->m_content == &content ? t_innermost : nullptr) {
    t_innermost = this;
  }

  /// Whether something that is still to come in this frame begins with \p element.
  virtual bool Expects(CXmlElement const* element) const = 0;
  /// Whether something that was passed over may be read from \p element on.
  virtual bool Reclaims(CXmlElement const*) const { return false; }
  /// \throws CQnValidationException for the first thing that is still to come and must not be missing.
  virtual void Require() = 0;
  /// Whether the frame expects an element because it repeats itself.
  virtual bool IsRepeated() const { return false; }

  CXmlElement* Cursor() const { return m_content.cursor; }
  bool HasStopped() const { return m_content.stopsAt != nullptr; }
  bool IsExpected() const;
  bool IsExpectedFurtherOut() const;
  bool IsInTheWay() const;
  bool Tell(FailurePoint const& point, CQnException& failure) const;
  template <class Check>
  bool Fails(Check check) const;
  void Refuse();
  void Take(Particle const& particle);
  void ReadGroup(GroupInfo const& group);
  /// To be called at the end.
  void Finish() {
    if (m_content.stopsAt == this) std::rethrow_exception(std::exchange(m_content.stop, nullptr));
  }

  Content& m_content;
  CXmlGeneratedClass& m_holder;

 private:
  bool FailsAsWithoutSink();

  static inline thread_local Frame* t_innermost = nullptr;

  Frame* const m_saved;
  Frame* const m_outer;
};

/// Whether the child under the cursor may stand there, or an outer frame goes back for it.
bool Frame::IsExpected() const {
  bool const isRefused = Cursor() == m_content.refused;
  for (Frame const* frame = this; frame != nullptr; frame = frame->m_outer) {
    if (frame->Expects(Cursor()) || (isRefused && frame->Reclaims(Cursor()))) return true;
  }
  return false;
}

bool Frame::IsExpectedFurtherOut() const {
  for (Frame const* frame = m_outer; frame != nullptr; frame = frame->m_outer) {
    if (frame->Expects(Cursor())) return !frame->IsRepeated();
  }
  return false;
}

/// Send \p failure of this frame to the sink. Always true.
bool Frame::Tell(FailurePoint const& point, CQnException& failure) const {
  m_content.hasFailed = true;
  if (!FailureReport::GoesOn(m_content.ctx, failure, point)) {
    m_content.stopsAt = this;
    m_content.stop = std::current_exception();
  }
  return true;
}

template <class Check>
bool Frame::Fails(Check check) const {
  try {
    check();
    return false;
  } catch (CQnException& failure) {
    return Tell(FailurePoint::At(m_content.parent, Cursor()), failure);
  }
}

/// The failure that the child under the cursor causes without a sink, if that is one about something missing.
bool Frame::FailsAsWithoutSink() {
  for (Frame* frame = this; frame != nullptr; frame = frame->m_outer) {
    if (frame->Fails([frame] { frame->Require(); })) return true;
  }
  return false;
}

/// Send the failure about the child under the cursor, which is not expected, and skip it unless something that was passed
/// over takes it.
void Frame::Refuse() {
  if (std::exchange(m_content.refused, Cursor()) == Cursor()) {  // what was passed over did not take it
    m_content.cursor = m_content.Next();
    return;
  }
  if (m_content.hasFailed || !FailsAsWithoutSink()) {
    Frame* outermost = this;
    while (outermost->m_outer != nullptr) outermost = outermost->m_outer;
    outermost->Fails(
        [&] { BoundAccess::RejectLeftOver(outermost->m_holder, m_content.ctx, m_content.parent, Cursor()); });
  }
  if (!HasStopped() && (IsInTheWay() || !IsExpected())) m_content.cursor = m_content.Next();
}

/// Whether the frame can go on with the next child, so that it does not stop for the refused one under the cursor.
bool Frame::IsInTheWay() const {
  return !IsRepeated() && !Reclaims(Cursor()) && m_content.Next() != nullptr && Expects(m_content.Next());
}

/// Whether a collection has a member for it.
bool IsCollection(Particle const& particle) { return particle.group == nullptr && particle.info->IsRepeated(); }

CollectionMember& CollectionOf(Particle const& particle) { return static_cast<CollectionMember&>(*particle.info); }

/// A collection, whose items or rounds may have other children between them.
class CollectionFrame : public Frame {
 public:
  CollectionFrame(Content& content, CXmlGeneratedClass& holder, Particle const& particle)
      : Frame(content, holder), m_particle(particle) {}

  void Read() {
    CXmlElement* const first = Cursor();
    while (!HasStopped()) {
      if (Expects(Cursor())) {
        ReadItems();
      } else if (Cursor() == nullptr || IsExpected()) {
        break;
      } else {
        Refuse();
      }
    }
    if (!HasStopped()) CheckCount(first);
    Finish();
  }

 private:
  bool Expects(CXmlElement const* element) const override {
    return !m_isFull && m_particle.Begins(m_content.ctx, element);
  }
  bool IsRepeated() const override { return true; }
  void Require() override {
    if (std::exchange(m_hasFailed, true)) return;
    CollectionOf(m_particle).ValidateCount(m_content.ctx, &m_holder);
    m_hasFailed = false;
  }
  void ReadItems() {
    CXmlElement const* const start = Cursor();
    m_content.cursor = CollectionOf(m_particle).ReadItems(m_content.ctx, &m_holder, m_content.parent, Cursor());
    m_isFull = Cursor() == start;
  }
  void CheckCount(CXmlElement const* first) {
    try {
      Require();
    } catch (CQnException& failure) {
      Tell(CollectionOf(m_particle).WhereCountIsWrong(m_content.ctx, &m_holder, m_content.parent, first, Cursor()),
           failure);
    }
  }

  Particle const& m_particle;
  bool m_isFull = false;     // a wildcard takes no more
  bool m_hasFailed = false;  // too few were reported
};

void Frame::Take(Particle const& particle) {
  if (particle.group != nullptr) return ReadGroup(*particle.group);
  if (IsCollection(particle)) return CollectionFrame(m_content, m_holder, particle).Read();
  CXmlElement* const element = Cursor();
  try {
    particle.info->ElementFromXml(m_content.ctx, &m_holder, m_content.parent, &m_content.cursor, "",
                                  XmlElementType_Pseudo);
  } catch (CQnException& failure) {
    if (!FailureReport::GoesOn(m_content.ctx, failure, {element})) throw;
  }
  if (Cursor() == element) m_content.cursor = m_content.Next();
}

/// Whether \p particle was passed over or may have more, so that it may be read from \p element on.
bool CanResume(Particle const& particle, Content const& content, CXmlGeneratedClass const& holder,
               CXmlElement const* element) {
  if (particle.group == nullptr) {
    return particle.Begins(content.ctx, element) && (IsCollection(particle) || !particle.IsSet(&holder));
  }
  std::vector<Particle> const& members = particle.group->Particles();
  bool const isChosen = particle.group->Kind() == RowKind::BeginChoice && particle.group->IsSet(&holder);
  return std::any_of(members.begin(), members.end(), [&](Particle const& member) {
    return (!isChosen || member.IsSet(&holder)) && CanResume(member, content, holder, element);
  });
}

/// A sequence, or the content of a class.
class SequenceFrame : public Frame {
 public:
  SequenceFrame(Content& content, CXmlGeneratedClass& holder, std::vector<Particle> const& particles, bool isClass)
      : Frame(content, holder), m_particles(particles), m_states(particles.size()), m_isClass(isClass) {}

  /// Begin in the middle where the first child is not that of a beginning.
  void Resume() {
    for (std::size_t i = 0; i < m_particles.size(); ++i) m_states[i].isTaken = m_particles[i].IsSet(&m_holder);
    m_next = m_resumed = FindPassed(Cursor(), m_particles.size());
  }

  void Read() {
    while (!HasStopped()) {
      CXmlElement* const child = Cursor();
      if (child != m_arrived) {
        m_arrived = child;
        m_start = m_next;
      }
      if (child != nullptr && !Expects(child) && !GoBack(child) && !IsExpected()) {
        Refuse();
      } else if (m_next == m_particles.size()) {
        break;
      } else if (m_particles[m_next].Begins(m_content.ctx, child) || IsResumed(child)) {
        TakeNext();
      } else {
        PassNext();
      }
    }
    Finish();
  }

 private:
  struct State {
    bool isTaken = false;
    bool isFull = false;     ///< a wildcard that takes no more
    bool hasFailed = false;  ///< it was reported as missing
  };

  std::size_t FindBeginning(CXmlElement const* element, std::size_t from) const {
    std::size_t i = from;
    while (i < m_particles.size() && (m_states[i].isFull || !m_particles[i].Begins(m_content.ctx, element))) ++i;
    return i;
  }
  /// The first particle before \p end that was passed over and may be read from \p element on, or \p end.
  std::size_t FindPassed(CXmlElement const* element, std::size_t end) const {
    for (std::size_t i = 0; i < end; ++i) {
      Particle const& particle = m_particles[i];
      if (m_states[i].isFull) continue;
      bool const isOpen = !m_states[i].isTaken && particle.Begins(m_content.ctx, element);
      bool const mayGoOn = m_states[i].isTaken && (particle.group != nullptr || IsCollection(particle));
      if (isOpen || (mayGoOn && CanResume(particle, m_content, m_holder, element))) return i;
    }
    return end;
  }
  bool Expects(CXmlElement const* element) const override {
    return FindBeginning(element, m_next) < m_particles.size() || IsResumed(element);
  }
  bool Reclaims(CXmlElement const* element) const override { return FindPassed(element, m_next) < m_next; }
  bool IsResumed(CXmlElement const* element) const { return m_resumed == m_next && element == m_content.refused; }

  /// Return to the particle that was passed over and takes \p child, which was refused.
  bool GoBack(CXmlElement const* child) {
    if (child != m_content.refused) return false;
    std::size_t const passed = FindPassed(child, m_next);
    if (passed == m_next) return false;
    m_next = m_resumed = passed;
    return true;
  }

  void TakeNext() {
    std::size_t const at = m_next++;
    m_resumed = kNone;
    m_states[at].isTaken = true;
    CXmlElement const* const start = Cursor();
    Take(m_particles[at]);
    m_states[at].isFull = Cursor() == start;
  }

  void PassNext() {
    State& state = m_states[m_next];
    if (!state.isTaken && !state.hasFailed && Fails([&] { RequireAt(m_next); })) {
      state.hasFailed = true;
      if (HasStopped()) return;
      if (IsMisplaced()) {
        m_content.cursor = m_content.Next();
        m_next = m_start;
        return;
      }
    }
    ++m_next;
  }

  /// Whether the child under the cursor, which a later particle takes, is followed by one for a particle before that.
  bool IsMisplaced() const {
    if (Cursor() == nullptr || Cursor() == m_content.refused || m_content.Next() == nullptr) return false;
    std::size_t const its = FindBeginning(Cursor(), m_next);
    if (its == m_particles.size() && !IsExpectedFurtherOut()) return false;
    return FindBeginning(m_content.Next(), m_start) < its;
  }

  void Require() override {
    for (std::size_t i = m_next; i < m_particles.size(); ++i) {
      if (m_states[i].isTaken || std::exchange(m_states[i].hasFailed, true)) continue;
      RequireAt(i);
      m_states[i].hasFailed = false;
    }
  }

  /// \throws as a read without a sink does when nothing begins the particle.
  void RequireAt(std::size_t i) const {
    Particle const& particle = m_particles[i];
    if (!particle.isRequired) return;
    if (m_isClass && IsCollection(particle)) {
      return CollectionOf(particle).ValidateCount(m_content.ctx, &m_holder);
    }
    bool const isGroup = m_isClass && particle.group != nullptr;
    if (isGroup ? particle.group->AcceptsMissing(m_content.ctx) : m_content.ctx.GetIgnoreMissingMandatoryElements()) {
      return;
    }
    particle.ThrowMissing();
  }

  static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

  std::vector<Particle> const& m_particles;
  std::vector<State> m_states;
  bool const m_isClass;
  std::size_t m_next = 0;
  std::size_t m_resumed = kNone;           // the particle that is taken wherever it begins
  CXmlElement const* m_arrived = nullptr;  // the child under the cursor, and the particle that was next when it came
  std::size_t m_start = 0;
};

/// An all group.
class AllFrame : public Frame {
 public:
  AllFrame(Content& content, CXmlGeneratedClass& holder, std::vector<Particle> const& particles)
      : Frame(content, holder), m_particles(particles), m_isTaken(particles.size()), m_hasFailed(particles.size()) {}

  void Read() {
    while (!HasStopped() && Cursor() != nullptr) {
      std::size_t const at = Find(Cursor());
      if (at < m_particles.size()) {
        m_isTaken[at] = true;
        m_order.push_back(static_cast<int>(at));
        Take(m_particles[at]);
      } else if (IsExpected()) {
        break;
      } else {
        Refuse();
      }
    }
    if (!std::is_sorted(m_order.begin(), m_order.end())) BoundAccess::SetOrder(&m_holder, m_order);
    while (!HasStopped() && Fails([this] { Require(); })) {
    }
    Finish();
  }

 private:
  std::size_t Find(CXmlElement const* element) const {
    std::size_t i = 0;
    while (i < m_particles.size() && (m_isTaken[i] || !m_particles[i].Begins(m_content.ctx, element))) ++i;
    return i;
  }
  bool Expects(CXmlElement const* element) const override { return Find(element) < m_particles.size(); }
  void Require() override {
    if (m_content.ctx.GetIgnoreMissingMandatoryElements()) return;
    for (std::size_t i = 0; i < m_particles.size(); ++i) {
      if (m_isTaken[i] || m_hasFailed[i] || !m_particles[i].isRequired) continue;
      m_hasFailed[i] = true;
      m_particles[i].ThrowMissing();
    }
  }

  std::vector<Particle> const& m_particles;
  std::vector<bool> m_isTaken;
  std::vector<bool> m_hasFailed;
  std::vector<int> m_order;
};

void Frame::ReadGroup(GroupInfo const& group) {
  std::vector<Particle> const& particles = group.Particles();
  bool const isResumed = !group.Begins(m_content.ctx, Cursor());
  if (group.Kind() == RowKind::BeginAll) return AllFrame(m_content, m_holder, particles).Read();
  if (group.Kind() == RowKind::BeginChoice) {
    auto const chosen = std::find_if(particles.begin(), particles.end(), [&](Particle const& particle) {
      return isResumed ? CanResume(particle, m_content, m_holder, Cursor()) : particle.Begins(m_content.ctx, Cursor());
    });
    if (chosen != particles.end()) Take(*chosen);
    return;
  }
  SequenceFrame sequence(m_content, m_holder, particles, false);
  if (isResumed) sequence.Resume();
  sequence.Read();
}

}  // namespace

CXmlElement* ReadContent(std::vector<Particle> const& content, CXmlGeneratedClass& holder, CXmlElement* parent,
                         CXmlElement* cursor, CXmlSerializationContext const& ctx) {
  bool const isRound = holder.GetClassInfo()->m_elementType != XmlElementType_Element;
  Frame const* const outer = isRound ? Frame::Of(parent) : nullptr;
  Content own{ctx, parent, cursor};
  Content& state = outer != nullptr ? outer->GetContent() : own;
  state.cursor = cursor;
  SequenceFrame(state, holder, content, true).Read();
  return state.cursor;
}

}  // namespace Quillon9
