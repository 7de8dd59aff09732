#include "plan_text.h"

namespace Quillon9Generator::Testing {
namespace {

/// The plan of a type with the content \p content, in which a to e are elements.
std::string PlanOfContent(std::string content) {
  for (char const name : {'a', 'b', 'c', 'd', 'e'}) {
    for (char const* after : {"/", " "}) {
      content = Replaced(std::move(content), std::string("<") + name + after,
                         std::string("<element type='int' name='") + name + "'" + after);
    }
  }
  return Replaced(PlanText("<complexType name='R'>" + content + "</complexType>"), " i4", "");
}

class Content : public testing::TestWithParam<PlanCase> {};

TEST_P(Content, IsFlatWhereItOccursOnce) { EXPECT_EQ(PlanOfContent(GetParam().schema), GetParam().plan); }

constexpr PlanCase kCases[] = {
    {"Sequence",
     R"(<sequence><a/><b minOccurs='0'/><c maxOccurs='1000'/><d minOccurs='2' maxOccurs='unbounded'/></sequence>)",
     R"(
class CR of R
  0 A m_a: value a mandatory
  1 B m_b: value b?
  2 C m_c: values c{1,1000}
  3 D m_d: values d{2,}
)"},
    {"SequencesThatOccurOnceVanish",
     R"(<sequence><sequence><a/></sequence><sequence><sequence><b/><c/></sequence><sequence/></sequence></sequence>)",
     R"(
class CR of R
  0 A m_a: value a mandatory
  1 B m_b: value b mandatory
  2 C m_c: value c mandatory
)"},
    {"GroupsOfOnePartMultiply",
     R"(<sequence><sequence minOccurs='0' maxOccurs='unbounded'><a/></sequence>
          <choice maxOccurs='3'><b maxOccurs='2'/></choice>
          <sequence maxOccurs='2'><c minOccurs='0'/></sequence>
          <sequence minOccurs='0'><d minOccurs='2' maxOccurs='2'/></sequence></sequence>)",
     R"(
class CR of R
  0 A m_a: values a{0,}
  1 B m_b: values b{1,6}
  2 C m_c: values c{0,2}
  3 D m_d: values d{2,2}
  rows A B C sequence(D)?
)"},
    {"OptionalGroup",
     R"(<sequence><sequence minOccurs='0'><a/><b minOccurs='0'/></sequence>
          <sequence minOccurs='0'><c minOccurs='0'/><d minOccurs='0'/></sequence></sequence>)",
     R"(
class CR of R
  0 A m_a: value a
  1 B m_b: value b?
  2 C m_c: value c?
  3 D m_d: value d?
  rows sequence(A B)? C D
)"},
    {"Choice", R"(<choice><a/><sequence><b/><c maxOccurs='2'/></sequence><choice><d/></choice></choice>)",
     R"(
class CR of R
  0 A m_a: value a in 0
  1 B m_b: value b in 0
  2 C m_c: values c{1,2} in 0
  3 D m_d: value d in 0
  choice Choice: A B D
  rows Choice(A sequence(B C) D)
)"},
    {"ChoiceThatMayBeEmpty",
     R"(<choice><a minOccurs='0'/><b minOccurs='0' maxOccurs='unbounded'/>
          <choice minOccurs='0'><c/><d/></choice></choice>)",
     R"(
class CR of R
  0 A m_a: value a in 0
  1 B m_b: values b{1,} in 0
  2 C m_c: value c in 0
  3 D m_d: value d in 0
  choice Choice: A B C D
  rows Choice(A B C D)?
)"},
    {"TwoChoices",
     R"(<sequence><choice><a/><b/></choice><choice minOccurs='0'><c/><sequence/></choice>
          <choice><d/><any namespace='##other'/></choice></sequence>)",
     R"(
class CR of R
  0 A m_a: value a in 0
  1 B m_b: value b in 0
  2 C m_c: value c?
  3 D m_d: value d in 1
  4 Any m_any: any allows "##other" not "urn:t" in 1
  choice Choice: A B
  choice Choice2: D Any
  rows Choice(A B) C Choice2(D Any)
)"},
    {"RepeatedChoice",
     R"(<choice minOccurs='0' maxOccurs='unbounded'><a maxOccurs='5'/><b/>
          <choice maxOccurs='unbounded'><c/><d minOccurs='0'/></choice></choice>)",
     R"(
class CR of R
  class CR::CChoice round
    0 A m_a: value a in 0
    1 B m_b: value b in 0
    2 C m_c: value c in 0
    3 D m_d: value d in 0
    choice Choice: A B C D
    rows Choice(A B C D)
  0 Choice m_choice: rounds{0,} CR::CChoice
)"},
    {"RepeatedSequence",
     R"(<sequence>
          <sequence minOccurs='2' maxOccurs='7'><a/><choice maxOccurs='2'><b/><c maxOccurs='2'/></choice></sequence>
          <sequence maxOccurs='unbounded'><d minOccurs='0'/><e minOccurs='0'/></sequence></sequence>)",
     R"(
class CR of R
  class CR::CSequence round
    class CR::CSequence::CChoice round
      0 B m_b: value b in 0
      1 C m_c: values c{1,2} in 0
      choice Choice: B C
      rows Choice(B C)
    0 A m_a: value a mandatory
    1 Choice m_choice: rounds{1,2} CR::CSequence::CChoice
  class CR::CSequence2 round
    0 D m_d: value d?
    1 E m_e: value e?
  0 Sequence m_sequence: rounds{2,7} CR::CSequence
  1 Sequence2 m_sequence2: rounds{0,} CR::CSequence2
)"},
    {"All", R"(<all minOccurs='0'><a/><b minOccurs='0'/></all>)",
     R"(
class CR of R
  0 A m_a: value a
  1 B m_b: value b?
  rows all(A B)?
)"},
    {"OneName", R"(<choice><sequence><a/><b/></sequence><sequence><c/><a/><b/></sequence></choice>)",
     R"(
class CR of R
  0 A m_a: value a in 0
  1 B m_b: value b in 0
  2 C m_c: value c in 0
  3 A2 m_a2: value a in 0
  4 B2 m_b2: value b in 0
  choice Choice: A C
  rows Choice(sequence(A B) sequence(C A2 B2))
)"},
    {"Nothing", R"(<sequence><choice minOccurs='0'/></sequence>)",
     R"(
class CR of R
)"},
};

INSTANTIATE_TEST_SUITE_P(Plan, Content, testing::ValuesIn(kCases), NameOfCase);

}  // namespace
}  // namespace Quillon9Generator::Testing
