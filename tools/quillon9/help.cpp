#include "help.h"

#include "quillon9/quillon9.h"

namespace Quillon9Tool {

char const kHelp[] =
    R"(usage: quillon9 COMMAND [OPTION]... INPUT [OUTPUT]
       quillon9 --help | --version

Generates C++ classes from XML Schemas, for programs that use the library
Quillon9. Reads documents in XML text or Fast Infoset (ITU-T X.891),
uncompressed or in gzip or zlib, and shows or converts them.

  generate  write C++ classes for the documents of a schema
  convert   write a document in another of these forms
  records   print or split the records of a document of any length
  tree      print its elements, attributes and texts as a tree
  inspect   print the octets of a Fast Infoset document, construct by construct

INPUT or OUTPUT - is standard input or output. The form of an input is detected
from its content. quillon9 COMMAND --help describes each command.

Exit status: 0 success; 1 a file or document could not be read or written;
2 wrong usage.
)";

char const kConvertHelp[] =
    R"(usage: quillon9 convert [OPTION]... INPUT [OUTPUT]

Writes the document INPUT to OUTPUT, or to standard output, in UTF-8. OUTPUT
is created or replaced only when all of it has been written.

  -t, --to=xml|finf        write XML text or Fast Infoset. Default: as the
                           extension of OUTPUT says (.xml, .finf; also in front
                           of .gz or .z); standard output gets the form that
                           INPUT does not have.
  -z, --compress=none|gzip|zlib
                           compress the result. Default: as the extension of
                           OUTPUT says: .gz for gzip, .z for zlib.
      --format, --no-format
                           XML text: put elements on lines of their own,
                           indented (default), or not. A document with text
                           next to child elements is never formatted.
      --declaration, --no-declaration
                           begin with an XML declaration, or not. Default: XML
                           text does, Fast Infoset does not.
      --suggested-encodings
                           Fast Infoset: write numbers, truth values, dates and
                           times in binary or packed form, where that is
                           shorter and gives exactly the same text back.
      --keep-space         keep white space between elements as text
      --large              for a document larger than memory: convert one child
                           of the root after the other. Text, comments and
                           processing instructions between them are lost, and
                           those in them are kept. Not with --keep-space and
                           --suggested-encodings.
  -q, --quiet              do not warn about what is lost
  -h, --help               print this

What is lost, with a warning on standard error: comments, processing
instructions and the document type declaration; a second prefix of one namespace.
All namespaces are declared on the root element, under the prefixes of the
input if each prefix stands for only one namespace.
)";

char const kRecordsHelp[] =
    R"(usage: quillon9 records --path=PATH [OPTION]... [INPUT]

Prints the elements of INPUT that PATH selects, one after the other, each with
the namespaces that it needs, in UTF-8. Memory does not grow with the length of
INPUT, which may be a pipe. Without INPUT, standard input is read.

  -p, --path=PATH          the records: /orders/order, where * stands for any
                           name and // for any elements in between. A name
                           without a prefix has any namespace; {uri}name has
                           that one, and {}name none. May be repeated.
      --prefix=P=URI       let P:name in a path stand for {URI}name. May be
                           repeated.
      --count              print only the number of records
  -o, --output=FILE        write a document with all records and the elements
                           around them to FILE
      --each=N             write one such file for N records each; FILE has a
                           place for the number, such as part-%05d.xml
      --plan=N             print N words for parts of INPUT of about equal size,
                           which must be uncompressed XML text in UTF-8
      --range=WORD         read only the part that a word of --plan describes
  -t, --to=xml|finf, -z, --compress=none|gzip|zlib,
      --declaration, --no-declaration
                           the form of the files, as for convert. Default: XML
                           text, unless the extension of FILE says otherwise
      --format, --no-format
                           put elements on lines of their own, indented
                           (default), or not
  -k, --keep-going         report a record that cannot be read, such as one
                           beyond a limit, and go on with the next one
  -q, --quiet              do not show progress and remarks
  -h, --help               print this

Progress is shown if standard error is a terminal. The exit status is 1, too, if
there was a record that could not be read.
)";

char const kTreeHelp[] =
    R"(usage: quillon9 tree [OPTION]... INPUT

Prints the elements of INPUT one per line, indented, with their text, and below
each its attributes, marked by @. Namespaces are listed below the root.

      --keep-space         show white space between elements as text
  -h, --help               print this

Comments, processing instructions, the document type declaration and the
position of text among child elements are not part of the tree.
)";

char const kInspectHelp[] =
    R"(usage: quillon9 inspect [OPTION]... INPUT

Prints what each octet of a Fast Infoset document means: the offset of each
construct (in the decompressed document), its octets and what it is;
"-> TABLE #N" shows what it adds to a table, "#N" what it takes from one. The
output ends with the size by kind of construct, the entries of the tables, and
how much shorter the indices make the document.

      --full               print all octets and each text in full
  -h, --help               print this
)";

char const kGenerateHelp[] =
    R"(usage: quillon9 generate [OPTION]... SCHEMA...

Writes C++ classes that read and write the documents of the XML Schemas SCHEMA
and of all schemas that they include or import: a header and a source, which are
named after the namespace. A file whose content stays the same is not touched.
SCHEMA may also be a WSDL description, for the schemas that are embedded in it.

  -n, --namespace=NAME     put the classes into this C++ namespace, such as
                           Orders or Company::Orders. Default: the name of the
                           first SCHEMA.
      --namespace-of=URI=NAME
                           put those of the XML namespace URI into the C++
                           namespace NAME instead
      --root=ELEMENT       only for what documents of the global element ELEMENT
                           may contain: {namespace}name, or name if only one
                           namespace has it
  -o, --output=FOLDER      write the files to FOLDER, which is created if it does
                           not exist. Default: the current folder.
      --map=TYPE=KIND      hold values of the simple type TYPE as KIND: string,
                           i4, r8, decimal, datetime and so on, as in ItemType.
                           TYPE is {namespace}name, name or xs:name.
      --rename={NAMESPACE}TYPE=NAME
                           call a type or a global element NAME in C++.
  -c, --catalog=FILE       look up addresses of schemas in this OASIS XML catalog
  -I, --include-path=FOLDER
                           look for included and imported schemas in FOLDER, too
      --split[=type|schema]
                           divide the classes among a header for each type, or
                           for each schema document, and several sources
      --value-rules=schema|classic
                           read, check and write values exactly as XML Schema
                           does, which is the default, or with the differences
                           of the library's classic rules. A context may say
                           otherwise.
      --dependency-file=FILE
                           write a rule for make or ninja to FILE: the generated
                           files depend on all schemas that were read.
      --dependency-target=TARGET
                           make TARGET depend on them in that rule instead
      --list-outputs       print the names of the generated files, and write none
                           but the dependency file
      --report[=FILE]      print a table of the classes and their members, with
                           the component of the schema that each comes from, on
                           standard output or to FILE
      --documentation=FOLDER
                           write the documentation of the schemas to FOLDER, as
                           pages in HTML
      --example[=ROOT]     also write a program that reads and writes documents
                           with the element ROOT (name or {namespace}name), and
                           a CMakeLists.txt for it. Default: the first global
                           element. Files that exist stay as they are.
  -h, --help               print this

The options --namespace-of, --root, --map, --rename, --catalog and
--include-path may be repeated.
With --report or --documentation, the classes are written only if --output,
--example or --dependency-file is given, too.
Nothing is fetched from a network. Faults are printed on standard error as
FILE:LINE:COLUMN: error: TEXT; if there is one, nothing is written.
)";

std::string VersionText() {
  return Quillon9::FormatString("quillon9 %d.%d.%d\n", QUILLON9_VERSION_MAJOR, QUILLON9_VERSION_MINOR,
                                QUILLON9_VERSION_PATCH);
}

}  // namespace Quillon9Tool
