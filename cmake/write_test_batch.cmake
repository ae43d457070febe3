# cmake -DBATCH=file.cpp -DSOURCES=a_test.cpp,b_test.cpp -P write_test_batch.cmake
#
# Writes several test sources into one, so that their headers are read once. Each unnamed namespace gets the name of its
# source: tests of one folder use the same short names for different things. Compilers name places in the sources.
string(REPLACE "," ";" sources "${SOURCES}")
set(batch "")
foreach(source IN LISTS sources)
  get_filename_component(name ${source} NAME_WE)
  file(READ ${source} text)
  string(REPLACE "\nnamespace {\n" "\nnamespace ${name} {\n" text "${text}")
  string(APPEND batch "#line 1 \"${source}\"\n${text}\n")
endforeach()
file(WRITE ${BATCH} "${batch}")
