#pragma once

#include <string_view>

namespace Quillon9 {

/// Whether this build computes the slow answer as well wherever it uses a remembered one, and compares both.
#ifdef QUILLON9_CHECK_CACHES
constexpr bool kChecksCaches = true;
#else
constexpr bool kChecksCaches = false;
#endif

/// One mechanism that remembers an answer, keeps memory for reuse or does several steps at once. It affects only the
/// time that something takes. "What the library remembers" in CONTRIBUTING.md lists all of them.
class FastPath {
 public:
  /// \p name is the one for the CMake option QUILLON9_WITHOUT.
  constexpr explicit FastPath(char const* name) : m_name(name), m_isOn(IsBuiltWith(name)) {}

  /// Whether this build uses the mechanism.
  constexpr bool IsOn() const { return m_isOn; }

  /// In a build that compares, end the process with a message unless \p isRight returns true. Other builds do not call
  /// \p isRight.
  template <class IsRight>
  void Verify(IsRight isRight) const {
    if constexpr (kChecksCaches) {
      if (!isRight()) Abort();
    }
  }
  /// End the process with a message that names the mechanism.
  [[noreturn]] void Abort() const;

 private:
#ifdef QUILLON9_WITHOUT
  static constexpr bool IsBuiltWith(std::string_view name) {
    std::string_view const without = QUILLON9_WITHOUT;  // names, each between two commas
    for (std::size_t at = without.find(name); at != without.npos; at = without.find(name, at + 1)) {
      if (without[at - 1] == ',' && without[at + name.size()] == ',') return false;
    }
    return true;
  }
#else
  static constexpr bool IsBuiltWith(std::string_view) { return true; }
#endif

  char const* m_name;
  bool m_isOn;
};

// These bound the work for large input, so every build uses them. For more than kMostVerified items, comparing would
// take the time that they save.
constexpr int kMostVerified = 256;
constexpr FastPath kFailedScans{"failed_scans"};
constexpr FastPath kNodePlace{"node_place"};

// These can be switched off. CMake and scripts/ablation read the names from the lines that begin with "inline".
inline constexpr FastPath kBlockCache{"block_cache"};
inline constexpr FastPath kElementAtOnce{"element_at_once"};
inline constexpr FastPath kFacetFilter{"facet_filter"};
inline constexpr FastPath kFastReader{"fast_reader"};
inline constexpr FastPath kFollowers{"followers"};
inline constexpr FastPath kGenericNames{"generic_names"};
inline constexpr FastPath kInfosetNames{"infoset_names"};
inline constexpr FastPath kKnownMember{"known_member"};
inline constexpr FastPath kKnownNames{"known_names"};
inline constexpr FastPath kNamespaceText{"namespace_text"};
inline constexpr FastPath kNodePool{"node_pool"};
inline constexpr FastPath kParsedNames{"parsed_names"};
inline constexpr FastPath kPlainClasses{"plain_classes"};
inline constexpr FastPath kRecentNames{"recent_names"};
inline constexpr FastPath kRememberedComparison{"remembered_comparison"};
inline constexpr FastPath kRememberedNumber{"remembered_number"};
inline constexpr FastPath kRememberedValue{"remembered_value"};
inline constexpr FastPath kSpareContexts{"spare_contexts"};
inline constexpr FastPath kSpareTables{"spare_tables"};
inline constexpr FastPath kTreeNames{"tree_names"};

}  // namespace Quillon9
