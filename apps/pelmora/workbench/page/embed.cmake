# Writes OUTPUT, a C++ source with the FILES of FOLDER (names between commas).
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
  # Compilers limit the length of one literal.
  string(LENGTH "${text}" length)
  set(literals "")
  set(at 0)
  while(at LESS length)
    string(SUBSTRING "${text}" ${at} 8000 piece)
    string(APPEND literals "\n    R\"page(${piece})page\"")
    math(EXPR at "${at} + 8000")
  endwhile()
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
