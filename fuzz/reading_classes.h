#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "quillon9/quillon9.h"
#include "reading_schema.h"

/// The classes of a schema as the library reads them. They log every call from the library.
namespace Reading {

using Log = std::vector<std::string>;

/// The tables of all classes, and the state that their objects share. One at a time in a thread; it outlives its
/// objects.
class World {
 public:
  explicit World(Schema const& schema);
  ~World();
  World(World const&) = delete;
  World& operator=(World const&) = delete;

  static World& Current() { return *t_current; }

  struct Tables {
    std::unique_ptr<Quillon9Data::CParentElementInfo> info;
    std::vector<std::unique_ptr<Quillon9Data::CElementInfo>> ownElements;
    std::vector<std::unique_ptr<Quillon9Data::CAttributeInfo>> ownAttributes;
    std::vector<Quillon9Data::CElementInfo*> elements;
    std::vector<Quillon9Data::CAttributeInfo*> attributes;
  };

  Schema const& m_schema;
  std::vector<Tables> m_tables;
  Log m_log;
  int m_objects = 0;

 private:
  inline static thread_local World* t_current = nullptr;
};

/// The text of an item of the log, or of a value in it.
///@{
std::string Item(char const* what, int object);
std::string Item(char const* what, int object, int index);
///@}

/// Create an object of the first class. If its schema says so, it is nillable.
CSmartPtr<Quillon9::CXmlGeneratedClass> MakeRoot();
/// Everything that an object of MakeRoot() holds, except the numbers of the objects.
std::string ValuesOf(Quillon9::CXmlGeneratedClass const& object);

}  // namespace Reading
