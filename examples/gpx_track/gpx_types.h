#pragma once

#include <optional>
#include <string>

#include "../support/meta_data.h"
#include "quillon9/quillon9.h"

/// The classes of gpx_track.xsd, one for each of its types: tracks in the GPS Exchange Format, GPX 1.1
/// (https://www.topografix.com/GPX/1/1/). They are for programs that read tracks, so there are getters but no setters.
///
/// Texts are in the code page of the process locale. Values that may be absent are optional. Writing checks the bounds;
/// reading does not. Objects live in CSmartPtr and are created by CreateInstance(); only one thread at a time may use a
/// graph of them.
namespace Gpx {

static_assert(QUILLON9_VERSION_MAJOR == 1, "these classes were written for another major version of the library");

/// The tables that the objects of one class share.
using Support::CMetaData;

/// The common base of the classes.
class CGpxObject : public Quillon9::CXmlGeneratedClass {
 public:
  using CXmlGeneratedClass::GetBase;
  Quillon9::CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override;
  std::string GetNamespace() const override;
  Quillon9Data::CParentElementInfo* GetClassInfo() const override;
  Quillon9Data::CElementInfo** GetClassElementInfo() const override;
  Quillon9Data::CAttributeInfo** GetClassAttributeInfo() const override;

 protected:
  CGpxObject(char const* elementName, CMetaData& metaData);
  ~CGpxObject() override;

 private:
  CMetaData& m_metaData;
};

/// The elements of one name and class, in document order. It belongs to its owner for the owner's whole life: reading
/// empties and fills it.
template <class Item>
class CItemCol : public Quillon9::CXmlCollection {
 public:
  /// Iterates over the items.
  class Iterator {
   public:
    explicit Iterator(Quillon9::CNode* node) : m_node(node) {}
    Item& operator*() const { return static_cast<Item&>(*m_node->m_item); }
    Iterator& operator++() {
      m_node = m_node->m_next;
      return *this;
    }
    bool operator!=(Iterator const& other) const { return m_node != other.m_node; }

   private:
    Quillon9::CNode* m_node;
  };

  /// Create a collection for any number of elements \p elementName.
  static CSmartPtr<CItemCol> CreateInstance(char const* elementName);

  Iterator begin() const { return Iterator(GetFirstNode()); }
  Iterator end() const { return Iterator(nullptr); }

 protected:
  explicit CItemCol(char const* elementName);
  ~CItemCol() override;

  void ToXml_Int(Quillon9::CXmlWriter* writer, bool isRoot, char const* ns,
                 Quillon9::CXmlSerializationContext const& ctx, bool inChoice) const override;
  Quillon9::CXmlElement* FromXml_Int(Quillon9::CXmlElement* parent, Quillon9::CXmlElement* cursor,
                                     Quillon9::CXmlSerializationContext const& ctx, bool inChoice) override;
};

/// An element of which only the name is known. Its attributes are skipped, and so are its children if the context
/// ignores unknown elements.
class CUnreadType : public CGpxObject {
 public:
  static CSmartPtr<CUnreadType> CreateInstance(char const* elementName);

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 protected:
  explicit CUnreadType(char const* elementName);
  ~CUnreadType() override;
};

/// A point: of a track, or on its own as a waypoint.
class CWptType : public CGpxObject {
 public:
  enum Property { Property_lat, Property_lon, Property_ele, Property_time };

  static CSmartPtr<CWptType> CreateInstance(char const* elementName);

  /// Degrees on the WGS 84 ellipsoid, north and east positive.
  double GetLat() const { return m_lat; }
  double GetLon() const { return m_lon; }
  /// Elevation in metres.
  std::optional<double> const& GetEle() const { return m_ele; }
  std::optional<Quillon9::CDateTime> const& GetTime() const { return m_time; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 protected:
  explicit CWptType(char const* elementName);
  ~CWptType() override;

 private:
  double m_lat = 0;
  double m_lon = 0;
  std::optional<double> m_ele;
  std::optional<Quillon9::CDateTime> m_time;
};

/// A stretch of a track without a gap in the recording.
class CTrksegType : public CGpxObject {
 public:
  enum Property { Property_trkpt };

  static CSmartPtr<CTrksegType> CreateInstance(char const* elementName);

  CItemCol<CWptType>* GetTrkpt() const { return m_trkpt; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 protected:
  explicit CTrksegType(char const* elementName);
  ~CTrksegType() override;

 private:
  CSmartPtr<CItemCol<CWptType>> const m_trkpt;
};

/// A track.
class CTrkType : public CGpxObject {
 public:
  enum Property { Property_name, Property_desc, Property_link, Property_trkseg };

  static CSmartPtr<CTrkType> CreateInstance(char const* elementName);

  std::optional<std::string> const& GetName() const { return m_name; }
  std::optional<std::string> const& GetDesc() const { return m_desc; }
  CItemCol<CTrksegType>* GetTrkseg() const { return m_trkseg; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 protected:
  explicit CTrkType(char const* elementName);
  ~CTrkType() override;

 private:
  std::optional<std::string> m_name;
  std::optional<std::string> m_desc;
  CSmartPtr<CItemCol<CUnreadType>> const m_link;
  CSmartPtr<CItemCol<CTrksegType>> const m_trkseg;
};

/// What a document says about itself.
class CMetadataType : public CGpxObject {
 public:
  enum Property { Property_name, Property_desc, Property_link, Property_time };

  static CSmartPtr<CMetadataType> CreateInstance(char const* elementName);

  std::optional<std::string> const& GetName() const { return m_name; }
  std::optional<std::string> const& GetDesc() const { return m_desc; }
  std::optional<Quillon9::CDateTime> const& GetTime() const { return m_time; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 protected:
  explicit CMetadataType(char const* elementName);
  ~CMetadataType() override;

 private:
  std::optional<std::string> m_name;
  std::optional<std::string> m_desc;
  CSmartPtr<CItemCol<CUnreadType>> const m_link;
  std::optional<Quillon9::CDateTime> m_time;
};

/// A whole document, the type of the document element.
class CGpxType : public CGpxObject {
 public:
  enum Property {
    Property_version,
    Property_creator,
    Property_name,
    Property_desc,
    Property_time,
    Property_metadata,
    Property_wpt,
    Property_rte,
    Property_trk
  };

  static CSmartPtr<CGpxType> CreateInstance(char const* elementName = "gpx");

  std::string const& GetVersion() const { return m_version; }
  std::string const& GetCreator() const { return m_creator; }
  /// GPX 1.0 has these three here, later versions have them in the metadata.
  std::optional<std::string> const& GetName() const { return m_name; }
  std::optional<std::string> const& GetDesc() const { return m_desc; }
  std::optional<Quillon9::CDateTime> const& GetTime() const { return m_time; }
  /// Return the metadata, or null if there is none. It belongs to this object; a read creates a new one.
  CMetadataType* GetMetadata() const { return m_metadata; }
  CItemCol<CWptType>* GetWpt() const { return m_wpt; }
  CItemCol<CTrkType>* GetTrk() const { return m_trk; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 protected:
  explicit CGpxType(char const* elementName);
  ~CGpxType() override;

 private:
  std::string m_version;
  std::string m_creator;
  std::optional<std::string> m_name;
  std::optional<std::string> m_desc;
  std::optional<Quillon9::CDateTime> m_time;
  CSmartPtr<CMetadataType> m_metadata;
  CSmartPtr<CItemCol<CWptType>> const m_wpt;
  CSmartPtr<CItemCol<CUnreadType>> const m_rte;
  CSmartPtr<CItemCol<CTrkType>> const m_trk;
};

/// Creates the objects that the tables identify by number.
class CClassFactory : public Quillon9::CClassfactoryBase {
 public:
  enum ClassId { ClassId_unreadType, ClassId_metadataType };

  /// Create an object of class \p classId for an element of this name.
  /// \throws Quillon9::CQnInvalidParamException for an unknown number.
  static CSmartPtr<Quillon9::CXmlObjectBase> CreateObject(int classId, char const* elementName);
};

}  // namespace Gpx
