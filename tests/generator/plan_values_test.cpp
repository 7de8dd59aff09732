#include "plan_text.h"

namespace Quillon9Generator::Testing {
namespace {

class Values : public testing::TestWithParam<PlanCase> {};

TEST_P(Values, AreHeldAsTheirKind) { EXPECT_EQ(PlanText(GetParam().schema), GetParam().plan); }

constexpr PlanCase kCases[] = {
    {"BuiltInTypes",
     R"(
<complexType name='A'><attribute name='a' type='unsignedShort'/><attribute name='b' type='positiveInteger'/>
  <attribute name='c' type='decimal'/><attribute name='d' type='gYear'/><attribute name='e' type='NCName'/>
  <attribute name='f' type='NMTOKENS'/><attribute name='g' type='QName'/><attribute name='h' type='normalizedString'/>
  <attribute name='i' type='base64Binary'/><attribute name='j' type='float'/></complexType>)",
     R"(
class CA of A
  0 A m_a: value @a? ui2
  1 B m_b: value @b? integer minInclusive=1
  2 C m_c: value @c? decimal
  3 D m_d: value @d? year
  4 E m_e: value @e? string
  5 F m_f: value @f? list of (string)
  6 G m_g: value @g? qualified name
  7 H m_h: value @h? string replace
  8 I m_i: value @i? base64Binary
  9 J m_j: value @j? r4
)"},
    {"Facets",
     R"(
<simpleType name='code'><restriction base='token'><pattern value='[A-Z]{2,2}'/><maxLength value='2'/></restriction>
</simpleType>
<simpleType name='list'><list itemType='t:code'/></simpleType>
<complexType name='A'><attribute name='a' type='t:code'/>
  <attribute name='b'><simpleType><restriction base='t:code'><pattern value='A.|B'/><pattern value='.Z'/></restriction>
  </simpleType></attribute>
  <attribute name='c'><simpleType><restriction base='byte'><minInclusive value='-5'/><totalDigits value='2'/>
  </restriction></simpleType></attribute>
  <attribute name='d'><simpleType><restriction base='decimal'><fractionDigits value='2'/><maxExclusive value='9.5'/>
    <enumeration value='1'/></restriction></simpleType></attribute>
  <attribute name='e'><simpleType><restriction base='t:list'><maxLength value='3'/></restriction></simpleType>
  </attribute>
  <attribute name='f'><simpleType><union memberTypes='int t:code'/></simpleType></attribute>
  <attribute name='g'><simpleType><union memberTypes='int string'/></simpleType></attribute>
  <attribute name='h'><simpleType><restriction base='date'><minInclusive value='2000-01-01'/></restriction>
  </simpleType></attribute>
  <attribute name='i'><simpleType><restriction base='hexBinary'><length value='4'/></restriction></simpleType>
  </attribute></complexType>)",
     R"(
class CA of A
  0 A m_a: value @a? string pattern=[A-Z]{2} maxLength=2
  1 B m_b: value @b? string pattern=(*NO_START_OPT)(?=(?:[A-Z]{2})\z)(?:A[^\n\r]|B|[^\n\r]Z)\z maxLength=2
  2 C m_c: value @c? i1 totalDigits=2 minInclusive=-5
  3 D m_d: value @d? decimal fractionDigits=2 maxExclusive=9.5 "1"
  4 E m_e: value @e? list of (string pattern=[A-Z]{2} maxLength=2) maxLength=3
  5 F m_f: value @f? string or (i4) or (string pattern=[A-Z]{2} maxLength=2)
  6 G m_g: value @g? string preserve
  7 H m_h: value @h? date minInclusive=2000-01-01
  8 I m_i: value @i? hexBinary length=4
)"},
    {"Lists",
     R"(
<simpleType name='day'><restriction base='token'><enumeration value='Mo'/><enumeration value='Tu'/></restriction>
</simpleType>
<simpleType name='days'><list itemType='t:day'/></simpleType>
<simpleType name='flags'><list><simpleType><restriction base='token'><enumeration value='x'/></restriction>
</simpleType></list></simpleType>
<simpleType name='pair'><restriction><simpleType><list itemType='short'/></simpleType><length value='2'/>
  <pattern value='. .'/><enumeration value='1 2'/><enumeration value='2 1'/></restriction></simpleType>
<complexType name='A'><sequence><element name='a' type='t:days'/><element name='b' type='t:pair' maxOccurs='2'/></sequence>
  <attribute name='c' default='1 x'><simpleType><list><simpleType><union memberTypes='int t:day NCName'/></simpleType>
  </list></simpleType></attribute><attribute name='d' type='t:flags'/></complexType>)",
     R"(
enum EDay of day: Mo="Mo" Tu="Tu"
enum EFlagsItem: X="x"
class CA of A
  0 A m_a: value a list of (EDay) mandatory
  1 B m_b: nillable values b{1,2} list of (i2) pattern=[^\n\r] [^\n\r] length=2 "1 2" "2 1"
  2 C m_c: value @c? list of (string or (i4) or (string "Mo" "Tu") or (string)) default="1 x"
  3 D m_d: value @d? list of (EFlagsItem)
)"},
    {"Unions",
     R"(
<simpleType name='n'><union memberTypes='byte unsignedShort'/></simpleType>
<simpleType name='m'><union memberTypes='t:n unsignedLong'/></simpleType>
<simpleType name='low'><restriction base='int'><maxInclusive value='-1'/></restriction></simpleType>
<simpleType name='high'><restriction base='int'><minInclusive value='10'/></restriction></simpleType>
<complexType name='A'><attribute name='a' type='t:n'/><attribute name='b' type='t:m'/>
  <attribute name='c'><simpleType><union memberTypes='t:low t:high'/></simpleType></attribute>
  <attribute name='d'><simpleType><restriction base='t:n'><enumeration value='7'/></restriction></simpleType></attribute>
  <attribute name='e'><simpleType><union memberTypes='date gYear'/></simpleType></attribute>
  <attribute name='f'><simpleType><union memberTypes='decimal'><simpleType><restriction base='NMTOKEN'>
  <enumeration value='all'/></restriction></simpleType></union></simpleType></attribute></complexType>)",
     R"(
class CA of A
  0 A m_a: value @a? i8 or (i1) or (ui2)
  1 B m_b: value @b? integer or (i8 or (i1) or (ui2)) or (ui8)
  2 C m_c: value @c? i4 or (i4 maxInclusive=-1) or (i4 minInclusive=10)
  3 D m_d: value @d? i8 or (i1) or (ui2) "7"
  4 E m_e: value @e? string or (date) or (year)
  5 F m_f: value @f? string or (decimal) or (string "all")
)"},
    {"UnionsOfAnyText",
     R"(
<simpleType name='any'><union memberTypes='int string'/></simpleType>
<complexType name='A'><attribute name='a' type='t:any' default='1'/><attribute name='b' type='t:any' fixed='1'/>
  <attribute name='c' fixed='1 x'><simpleType><list><simpleType><union memberTypes='t:any anyURI'/></simpleType></list>
  </simpleType></attribute>
  <attribute name='d'><simpleType><restriction base='t:any'><enumeration value='1'/></restriction></simpleType>
  </attribute></complexType>)",
     R"(
class CA of A
  0 A m_a: value @a? string preserve default="1"
  1 B m_b: value @b? string preserve or (i4) or (string preserve) fixed="1"
  2 C m_c: value @c? list of (string preserve or (string preserve or (i4) or (string preserve)) or (string)) fixed="1 x"
  3 D m_d: value @d? string preserve or (i4) or (string preserve) "1"
)"},
    {"QualifiedNames",
     R"(
<simpleType name='n'><restriction base='QName'><length value='9'/><pattern value='[a-z]:.*'/><enumeration value='t:a'/>
  <enumeration value='b'/></restriction></simpleType>
<complexType name='A'><attribute name='a' type='t:n'/><attribute name='b' type='t:n' default='t:a'/>
  <attribute name='c'><simpleType><restriction><simpleType><list itemType='QName'/></simpleType>
  <enumeration value='a t:b'/></restriction></simpleType></attribute></complexType>)",
     R"(
class CA of A
  0 A m_a: value @a? qualified name pattern=(?:[a-z]:[^\n\r]*)\z "a" "{http://www.w3.org/2001/XMLSchema}b"
  1 B m_b: value @b? string pattern=(?:[a-z]:[^\n\r]*)\z default="t:a"
  2 C m_c: value @c? list of (qualified name) "{http://www.w3.org/2001/XMLSchema}a b"
a.xsd:4:55: warning: the qualified name in "b", which has a default or fixed value, is kept as text; its prefix is not declared on writing
)"},
    {"Enumerations",
     R"(
<simpleType name='colour'><restriction base='string'><enumeration value='red'/><enumeration value='blue'/></restriction>
</simpleType>
<simpleType name='same'><restriction base='t:colour'><maxLength value='4'/></restriction></simpleType>
<simpleType name='part'><restriction base='t:colour'><enumeration value='red'/></restriction></simpleType>
<simpleType name='address'><restriction base='anyURI'><enumeration value='urn:a'/></restriction></simpleType>
<complexType name='A'><attribute name='a' type='t:same' default='red'/><attribute name='b' type='t:part'/>
  <attribute name='c' type='t:address'/>
  <attribute name='d'><simpleType><union memberTypes='t:colour t:part'/></simpleType></attribute></complexType>)",
     R"(
enum EColour of colour: Red="red" Blue="blue"
enum EPart of part: Red="red"
class CA of A
  enum CA::ED: Red="red" Blue="blue"
  0 A m_a: value @a? EColour preserve default="red"
  1 B m_b: value @b? EPart preserve
  2 C m_c: value @c? string "urn:a"
  3 D m_d: value @d? CA::ED preserve
)"},
    {"DefaultsThatAreNotKept",
     R"(
<complexType name='a'>
 <attribute name='d' type='dateTime' default='12000-01-01T00:00:00'/>
 <attribute name='e' type='QName' default='t:x'/>
</complexType>)",
     R"(
class CA of a
  0 D m_d: value @d? datetime
  1 E m_e: value @e? string default="t:x"
a.xsd:3:2: warning: the default value "12000-01-01T00:00:00" of "d" is not supported and dropped
a.xsd:4:2: warning: the qualified name in "e", which has a default or fixed value, is kept as text; its prefix is not declared on writing
)"},
};

INSTANTIATE_TEST_SUITE_P(Plan, Values, testing::ValuesIn(kCases), NameOfCase);

}  // namespace
}  // namespace Quillon9Generator::Testing
