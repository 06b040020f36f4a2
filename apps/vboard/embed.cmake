# Write files as a C++ source that holds their bytes.
#
#   cmake -DOUTPUT=embedded.cpp -DFUNCTION=page_files -DFOLDER=DIR -DFILES=a|b -P embed.cmake
#
# The source defines vboard_app::FUNCTION(), a table of {name, bytes, size} that ends with a null name.
string(REPLACE "|" ";" FILES "${FILES}")
set(arrays "")
set(rows "")
set(number 0)
foreach(file IN LISTS FILES)
  file(READ ${FOLDER}/${file} hex HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
  string(REGEX REPLACE "((0x..,){24})" "\\1\n" bytes "${bytes}")
  string(APPEND arrays "const unsigned char file_${number}[] = {\n${bytes}0x00};\n")
  string(APPEND rows "    {\"${file}\", file_${number}, sizeof file_${number} - 1},\n")
  math(EXPR number "${number} + 1")
endforeach()
file(WRITE ${OUTPUT} "#include \"embedded.h\"
namespace
{
${arrays}const vboard_app::EmbeddedFile kFiles[] = {
${rows}    {nullptr, nullptr, 0}};
} // namespace
const vboard_app::EmbeddedFile *vboard_app::${FUNCTION}() { return kFiles; }
")
