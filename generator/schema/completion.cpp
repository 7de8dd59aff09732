#include "schema/builder.h"
#include "schema/limits.h"

namespace Quillon9Generator::Schema {

bool Builder::MayDescend(Node const& node) {
  if (m_depth < kMaxLevels) return true;
  m_diagnostics.Error(node.place, "more than " + std::to_string(kMaxLevels) + " definitions need one another");
  return false;
}

/// Return whether \p global has to be filled now. A component that needs itself is an error.
template <class Object>
bool Builder::Begin(Global<Object>& global) {
  if (global.state == State::Filled) return false;
  std::string const name =
      std::string(global.node->name) + " \"" + std::string(Trimmed(*global.node->Find("name"))) + "\"";
  if (global.state == State::Filling) {
    m_diagnostics.Error(global.node->place, "xs:" + name + " is defined by itself");
    return false;
  }
  if (!MayDescend(*global.node)) return false;
  ++m_depth;
  global.state = State::Filling;
  return true;
}

template <class Object>
void Builder::End(Global<Object>& global) {
  --m_depth;
  global.state = State::Filled;
}

template bool Builder::Begin(Global<SimpleType>&);
template bool Builder::Begin(Global<ComplexType>&);
template bool Builder::Begin(Global<AttributeSet>&);
template void Builder::End(Global<SimpleType>&);
template void Builder::End(Global<ComplexType>&);
template void Builder::End(Global<AttributeSet>&);

}  // namespace Quillon9Generator::Schema
