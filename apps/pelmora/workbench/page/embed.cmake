# Writes OUTPUT, a C++ source with the FILES of FOLDER (names between commas).
include(${CMAKE_CURRENT_LIST_DIR}/../../../../cmake/text_literals.cmake)
string(REPLACE "," ";" names "${FILES}")
set(texts "")
set(table "")
set(number 0)
foreach(name IN LISTS names)
  file(READ ${FOLDER}/${name} text)
  get_filename_component(plain ${name} NAME)
  if(plain MATCHES "\\.html$")
    set(type "text/html; charset=utf-8")
  elseif(plain MATCHES "\\.css$")
    set(type "text/css; charset=utf-8")
  elseif(plain MATCHES "\\.js$")
    set(type "text/javascript; charset=utf-8")
  elseif(plain MATCHES "\\.svg$")
    set(type "image/svg+xml")
  else()
    set(type "application/json")
  endif()
  pelmora_text_literals(literals "${text}")
  string(APPEND texts "constexpr std::string_view text${number} =${literals};\n")
  string(APPEND table "    File{\"${plain}\", \"${type}\", text${number}},\n")
  math(EXPR number "${number} + 1")
endforeach()
file(WRITE ${OUTPUT} "// Made from workbench/page; do not edit.
#include \"apps/pelmora/workbench/page/page_files.h\"

namespace pelmora::cli::workbench::page {
namespace {

${texts}
constexpr File files[] = {
${table}};

}  // namespace

const File* file(std::string_view name) {
  if (name.empty()) name = \"index.html\";
  for (const File& known : files) {
    if (known.name == name) return &known;
  }
  return nullptr;
}

}  // namespace pelmora::cli::workbench::page
")
