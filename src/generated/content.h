#pragma once

#include <memory>
#include <string>
#include <vector>

#include "quillon9/descriptors/element_info.h"
#include "quillon9/generated/rows.h"

namespace Quillon9 {

class GroupInfo;

/// One particle of a group: a member of the class, or a group inside.
struct Particle {
  CElementRow const* row;  ///< the one that begins it, if it is a group
  bool isRequired;         ///< a valid document has something for it
  std::unique_ptr<Quillon9Data::CElementInfo> info;
  GroupInfo const* group = nullptr;  ///< info, if that is a group

  /// Whether \p cursor, which may be null, is the first element of this particle.
  bool Begins(CXmlSerializationContext const& ctx, CXmlElement const* cursor) const;
  /// Whether \p holder has something to write for it.
  bool IsSet(CXmlGeneratedClass const* holder) const;
  /// \throws CQnValidationException: what is missing when nothing begins this particle.
  [[noreturn]] void ThrowMissing() const;
  /// Append the names of the elements that may begin it to a list.
  void AppendNames(std::string& names) const;
};

/// A group of particles that work on properties of the class around it, as one entry of its table. Only elements that
/// begin a group are read into it, which is possible since a schema lets one element decide (W3C XML Schema Part 1,
/// 3.8.6, "Unique Particle Attribution"). So a group that has begun must complete.
class GroupInfo : public Quillon9Data::CElementInfoSeq {
 public:
  GroupInfo(RowKind kind, Occurs occurs, std::vector<Particle> particles);
  ~GroupInfo() override;

  bool ElementToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement* parent,
                      CXmlElement** cursor, char const* holderNamespace,
                      Quillon9Data::XmlElementType holderType) override;
  bool ReadsHolderNamespace() const override { return false; }
  bool MayBegin(CXmlSerializationContext const& ctx, CXmlElement const* element) const override {
    return Begins(ctx, element);
  }

  bool Begins(CXmlSerializationContext const& ctx, CXmlElement const* cursor) const;
  bool IsSet(CXmlGeneratedClass const* holder) const;
  bool IsRequired() const { return m_isRequired; }
  RowKind Kind() const { return m_kind; }
  std::vector<Particle> const& Particles() const { return m_particles; }
  /// Whether \p ctx ignores that nothing begins it.
  bool AcceptsMissing(CXmlSerializationContext const& ctx) const;
  [[noreturn]] void ThrowMissing() const;
  void AppendNames(std::string& names) const;

 private:
  struct Place {
    CXmlSerializationContext const& ctx;
    CXmlGeneratedClass* holder;
    CXmlElement* parent;
    CXmlElement** cursor;
  };

  void Read(Place const& place) const;
  void ReadSequence(Place const& place) const;
  void ReadChoice(Place const& place) const;
  void ReadAll(Place const& place) const;
  bool WriteChoice(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, CXmlWriter* writer) const;
  bool WriteMembers(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, CXmlWriter* writer) const;

  RowKind m_kind;
  bool m_isRequired;
  std::vector<Particle> m_particles;
};

/// Make the descriptor of a row that is not the beginning or end of a group. \p isInGroup says that a group asks it only
/// for elements that begin it, and checks itself what is required.
std::unique_ptr<Quillon9Data::CElementInfo> MakeMember(CElementRow const& row, bool isInGroup);

/// Whether the particle of a row that is not the beginning or end of a group may be absent.
bool MayBeAbsent(CElementRow const& row);

}  // namespace Quillon9
