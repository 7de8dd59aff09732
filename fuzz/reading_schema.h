#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "quillon9/descriptors/generated_class.h"
#include "quillon9/values/item_type.h"

/// Describes the classes of a random case: the library's tables are made from this description, and the model reads by
/// it.
namespace Reading {

enum class Content { kValue, kEnum, kObject, kAbstract, kUntyped };
enum class Occurs { kMandatory, kOptional, kRepeated };

/// One member of a class, held in the property with its index.
struct Member {
  Content content = Content::kValue;
  Occurs occurs = Occurs::kOptional;
  std::string name;
  std::string ns;
  int index = 0;
  Quillon9::ItemType type = Quillon9::ItemType_string;
  int classId = 0;       ///< of a known object, and of the items of a collection of them
  bool isGroup = false;  ///< the object has no tag
  bool requiresContent = false;
  std::string restriction;      ///< of untyped content, in the form that the descriptor takes
  std::string heldRestriction;  ///< the restriction of the mandatory element that the object holds
  std::string target;
  int minOccurs = 0;
  int maxOccurs = -1;
};

enum class AttributeKind { kValue, kEnum, kAny };

struct Attribute {
  AttributeKind kind = AttributeKind::kValue;
  std::string name;
  std::string ns;
  int index = 0;
  bool isOptional = true;
  Quillon9::ItemType type = Quillon9::ItemType_string;
  std::string restriction;
};

/// The action of a class's Init().
enum class InitKind { kNothing, kClearCollections, kClearAll, kClearAllButObjects };

struct Class {
  int id = 0;
  Quillon9Data::XmlElementGroupType group = Quillon9Data::XmlElementGroupType_Sequence;
  bool hasTag = true;
  bool isNillable = false;
  bool rejectsAttributes = false;
  int textProperty = -1;
  std::string ns;
  InitKind init = InitKind::kNothing;
  int base = -1;                  ///< the class whose descriptors the table begins with
  std::size_t inherited = 0;      ///< number of these descriptors
  bool sharesAttributes = false;  ///< the table of attributes is that of the base
  std::vector<Member> members;
  std::vector<Attribute> attributes;
};

using Schema = std::vector<Class>;

/// The documents are read one after another into one object of the first class. Each letter in \p ignoring turns an
/// option on: U unknown elements, M missing mandatory ones, C missing choice, I collection counts, A unknown
/// attributes, N namespaces.
struct Case {
  Schema schema;
  std::vector<std::string> documents;
  std::string ignoring;
};

/// Returns a number below its argument, which is not 0: taken from the octets of an input, or at random.
using Chooser = std::function<unsigned(unsigned)>;

/// \p children is the maximal number of children of the document element.
Case MakeCase(Chooser const& choose, unsigned children = 6);
Schema MakeSchema(Chooser const& choose);
/// One child of a document element, with its contents.
std::string MakeChild(Chooser const& choose, unsigned depth);
/// A document whose children are \p content.
std::string MakeDocument(std::string const& attributes, std::string const& content);

/// The case in a readable form.
std::string Describe(Case const& tried);

// The functions of the generated code, which the model also calls.

inline char const* EnumText(int value) { return value == 1 ? "1" : "2"; }
int EnumOf(char const* text);

/// The class of the object that an element factory creates; -1 for none.
int ClassOfElement(Schema const& schema, Quillon9::CXmlElement* element);

}  // namespace Reading
