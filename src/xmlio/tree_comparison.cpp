#include "xmlio/tree_comparison.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <new>
#include <string_view>
#include <vector>

#include "base/fast_paths.h"
#include "quillon9/base/exceptions.h"
#include "xmlio/expat_reader.h"
#include "xmlio/node_access.h"

namespace Quillon9 {

namespace {

/// Beyond this number, questions for the namespaces in scope would take longer than the reads.
constexpr std::size_t kMostLookups = 10000;

bool HasSameName(CXmlElement const& left, CXmlElement const& right) {
  return left.GetLocalName() == right.GetLocalName() && left.GetNamespaceURI() == right.GetNamespaceURI();
}

bool HasSamePlaces(CXmlElement const& left, CXmlElement const& right) {
  CChildPlaces const* const one = XmlNodeAccess::PlacesOf(left);
  CChildPlaces const* const other = XmlNodeAccess::PlacesOf(right);
  if (one == nullptr || other == nullptr) return one == other;
  return one->leading == other->leading && one->others == other->others;
}

bool HasSameAttributes(CXmlElement const& left, CXmlElement const& right) {
  CXmlAttribute const* one = left.GetFirstAttribute();
  CXmlAttribute const* other = right.GetFirstAttribute();
  while (one != nullptr && other != nullptr) {
    bool const isSame = one->GetLocalName() == other->GetLocalName() &&
                        one->GetNamespaceURI() == other->GetNamespaceURI() &&
                        one->GetValueView() == other->GetValueView();
    if (!isSame) return false;
    one = one->GetNextAttribute();
    other = other->GetNextAttribute();
  }
  return one == other;
}

bool HasSameMarkup(std::vector<CMarkup> const& left, std::vector<CMarkup> const& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](CMarkup const& one, CMarkup const& other) {
    return one.target == other.target && one.text == other.text && one.childrenInFront == other.childrenInFront &&
           one.textInFront == other.textInFront;
  });
}

/// Compares two trees in document order.
class Comparison {
 public:
  Comparison(CXmlDocument const& left, CXmlDocument const& right) : m_left(left), m_right(right) {}

  std::string Run() {
    Visit(m_left.GetDocumentElement(), m_right.GetDocumentElement());
    while (m_difference.empty() && !m_pending.empty()) {
      Pair const pair = m_pending.back();
      if (pair.isEntered) {
        m_pending.pop_back();
        Visit(pair.left->GetNextSiblingElement(), pair.right->GetNextSiblingElement());
      } else {
        m_pending.back().isEntered = true;
        Visit(pair.left->GetFirstElement(), pair.right->GetFirstElement());
      }
    }
    return m_difference;
  }

 private:
  struct Pair {
    CXmlElement const* left;
    CXmlElement const* right;
    bool isEntered;
  };

  void Visit(CXmlElement const* left, CXmlElement const* right) {
    if (left == nullptr && right == nullptr) return;
    if (left == nullptr || right == nullptr) {
      m_difference = "the number of children, at [" + (left != nullptr ? left : right)->GetLocalName() + "]";
      return;
    }
    Compare(*left, *right);
    m_pending.push_back({left, right, false});
  }

  void Compare(CXmlElement const& left, CXmlElement const& right) {
    if (!HasSameName(left, right)) {
      Report("the name", left);
    } else if (!HasSameAttributes(left, right)) {
      Report("the attributes", left);
    } else if (left.GetTextView() != right.GetTextView()) {
      Report("the text", left);
    } else if (!HasSamePlaces(left, right)) {
      Report("the places of the children", left);
    } else if (!HasSameMarkup(XmlNodeAccess::MarkupIn(left), XmlNodeAccess::MarkupIn(right))) {
      Report("the comments", left);
    } else if (!HasSameNamespaces(left, right)) {
      Report("the namespaces in scope", left);
    }
  }

  bool HasSameNamespaces(CXmlElement const& left, CXmlElement const& right) {
    std::string one;
    std::string other;
    for (auto const& alias : m_left.GetNamespaceAliases()) {
      if (m_lookups == kMostLookups) break;
      ++m_lookups;
      bool const isBound = m_left.LookupNamespace(left, alias.first, one);
      if (m_right.LookupNamespace(right, alias.first, other) != isBound || one != other) return false;
    }
    return true;
  }

  void Report(char const* what, CXmlElement const& element) {
    m_difference = std::string(what) + " of [" + element.GetLocalName() + "]";
  }

  CXmlDocument const& m_left;
  CXmlDocument const& m_right;
  std::vector<Pair> m_pending;  // whose children and next siblings have not been compared
  std::size_t m_lookups = 0;
  std::string m_difference;
};

}  // namespace

std::string FirstDifference(CXmlDocument& left, CXmlDocument& right) {
  if (left.GetNamespaceAliases() != right.GetNamespaceAliases()) return "the aliases";
  if (XmlNodeAccess::ContentSize(left) != XmlNodeAccess::ContentSize(right)) return "the size of the content";
  if (!HasSameMarkup(XmlNodeAccess::MarkupIn(left), XmlNodeAccess::MarkupIn(right))) {
    return "the comments around the document element";
  }
  return Comparison(left, right).Run();
}

void CompareWithParser(CXmlDocument& document) {
  CXmlDocument again(document.GetContext());
  XmlNodeAccess::LendInput(again, document);
  std::string difference;
  try {
    CExpatReader reader(again);
    reader.CreateParser();
    reader.Parse(true);
    difference = FirstDifference(document, again);
  } catch (CQnException const& failure) {
    difference = failure.GetFullMessage();
    if (difference.find(XML_ErrorString(XML_ERROR_NO_MEMORY)) == 0) throw std::bad_alloc();
  }
  if (difference.empty()) return;
  std::fprintf(stderr, "The parser reads something else: %s\n", difference.c_str());
  kFastReader.Abort();
}

}  // namespace Quillon9
