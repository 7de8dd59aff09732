#include "schema/builder.h"

namespace Quillon9Generator::Schema {

namespace {

std::string PathIn(Node const& node) { return std::string(Trimmed(node.Find("xpath").value_or(""))); }

}  // namespace

void Builder::ReadIdentityConstraints(ElementDeclaration& element, Document const& document, Node const& node) {
  for (Node const& child : node.children) {
    if (child.tag != Tag::Key && child.tag != Tag::Keyref && child.tag != Tag::Unique) continue;
    IdentityConstraint& constraint = m_storage.identityConstraints.emplace_back();
    Describe(constraint, child);
    constraint.name = {document.targetNamespace, ReadName(child)};
    constraint.kind = child.tag == Tag::Key      ? IdentityConstraint::Kind::Key
                      : child.tag == Tag::Keyref ? IdentityConstraint::Kind::Keyref
                                                 : IdentityConstraint::Kind::Unique;
    for (Node const& path : child.children) {
      if (path.tag == Tag::Selector) constraint.selector = PathIn(path);
      if (path.tag == Tag::Field) constraint.fields.push_back(PathIn(path));
    }
    element.identityConstraints.push_back(&constraint);
    if (!m_identityConstraints.try_emplace(constraint.name, &constraint).second) {
      m_diagnostics.Error(child.place, "a second identity constraint \"" + constraint.name.local + "\"");
    }
    if (child.tag == Tag::Keyref && child.Has("refer")) m_keyrefs.push_back({&constraint, &child, &document});
  }
}

void Builder::ResolveKeyrefs() {
  for (PendingKeyref const& keyref : m_keyrefs) {
    std::string_view const text = *keyref.node->Find("refer");
    std::optional<QualifiedName> const name = Resolve(*keyref.document, *keyref.node, text);
    if (!name) continue;
    auto const found = m_identityConstraints.find(*name);
    std::string const quoted = "\"" + std::string(Trimmed(text)) + "\"";
    if (found == m_identityConstraints.end()) {
      m_diagnostics.Error(keyref.node->place, "no key or unique constraint " + quoted);
    } else if (found->second->kind == IdentityConstraint::Kind::Keyref) {
      m_diagnostics.Error(keyref.node->place, quoted + " is a keyref itself, so that none can refer to it");
    } else if (found->second->fields.size() != keyref.constraint->fields.size()) {
      m_diagnostics.Error(keyref.node->place, "the keyref has another number of fields than " + quoted);
    } else {
      keyref.constraint->refer = found->second;
    }
  }
}

}  // namespace Quillon9Generator::Schema
