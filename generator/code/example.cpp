#include "code/example.h"

#include <string_view>

#include "code/text.h"
#include "quillon9/version.h"

namespace Quillon9Generator::Code {

namespace {

/// The getter that a program is likely to call first; empty for none.
std::string FirstGetter(Plan::Root const& root) {
  if (root.anyType) return "";
  if (root.type == nullptr) return "GetValue()";
  for (Plan::Class const* cls = root.type; cls != nullptr; cls = cls->base) {
    if (!cls->members.empty()) return "Get" + cls->members.front().cppName + "()";
  }
  return "";
}

std::string Main(std::string const& header, Plan::Namespace const& ns, Plan::Root const& root) {
  std::string const getter = FirstGetter(root);
  Text text;
  text.Line("// Reads a document whose element is " + HarmlessText(root.name.local) + ", and writes it again.");
  text.Line("//");
  text.Line("// quillon9 generate has written this file once, and does not change it any more.");
  text.Line("#include <iostream>");
  text.Blank();
  text.Line("#include " + Literal(header));
  text.Blank();
  text.Append(
      "int main(int argc, char** argv) {\n"
      "  if (argc != 3) {\n"
      "    std::cerr << \"usage: \" << argv[0] << \" INPUT OUTPUT\\n\";\n"
      "    return 2;\n"
      "  }\n"
      "  try {\n");
  text.Indent(4);
  text.Line("auto const object = " + ns.cppName + "::Read" + root.cppName + "(argv[1]);");
  text.Line("// Work with the object here" + (getter.empty() ? "." : ", for example with object->" + getter + "."));
  text.Outdent(4);
  text.Append(
      "    object->ToXmlFile(argv[2]);\n"
      "  } catch (Quillon9::CQnException const& failure) {\n"
      "    std::cerr << failure.GetReport() << '\\n';\n"
      "    return 1;\n"
      "  }\n"
      "  return 0;\n"
      "}\n");
  return text.Take();
}

bool IsSource(std::string_view name) {
  constexpr std::string_view kEnding = ".cpp";
  return name.size() > kEnding.size() && name.substr(name.size() - kEnding.size()) == kEnding;
}

std::string CMakeLists(std::vector<std::string> const& files) {
  std::string const version = std::to_string(QUILLON9_VERSION_MAJOR) + "." + std::to_string(QUILLON9_VERSION_MINOR);
  std::string text =
      "# quillon9 generate has written this file once, and does not change it any more.\n"
      "cmake_minimum_required(VERSION 3.25)\n"
      "project(example LANGUAGES CXX)\n"
      "\n"
      "find_package(Quillon9 " +
      version +
      " REQUIRED)\n"
      "\n"
      "# quillon9_generate(TARGET example SCHEMAS ...) in place of the generated sources generates them while "
      "building.\n"
      "add_executable(example\n"
      "  main.cpp";
  for (std::string const& file : files) {
    if (IsSource(file)) text += "\n  " + file;
  }
  return text + ")\ntarget_link_libraries(example PRIVATE Quillon9::quillon9)\n";
}

}  // namespace

std::vector<GeneratedFile> Example(Plan::Plan const& plan, Plan::Namespace const& ns, Plan::Root const& root,
                                   std::vector<std::string> const& files) {
  return {{"main.cpp", Main(plan.namespaces.front().fileStem + ".h", ns, root)}, {"CMakeLists.txt", CMakeLists(files)}};
}

}  // namespace Quillon9Generator::Code
