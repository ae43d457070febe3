# The headers' plain comments in the form that Doxygen reads: "//" before a declaration, "//" behind one, and the
# labels of a contract ("Errors:", "Shape:") as headings.
# SPDX-License-Identifier: MIT
function escaped(text) {
  gsub(/[\\@<>#%]/, "\\\\&", text)
  return text
}

/SPDX-License-Identifier/ { print; next }

FNR == 1 && /^\/\/ / {
  print "/// \\file"
  print "/// " escaped(substr($0, 4))
  next
}

/^ *\/\// {
  match($0, /^ */)
  indent = substr($0, 1, RLENGTH)
  text = substr($0, RLENGTH + 3)
  if (text ~ /^ +[A-Z][A-Za-z]*: / && text !~ /^     /) {
    split(text, label, ":")
    sub(/^ +/, "", label[1])
    print indent "/// \\par " label[1]
    sub(/^ +[A-Z][A-Za-z]*: */, "", text)
    print indent "/// " escaped(text)
    inContract = 1
    next
  }
  # What continues a label is indented for the eye only; elsewhere four blanks are an example.
  if (text !~ /[^ ]/) inContract = 0
  if (inContract) sub(/^ +/, " ", text)
  print indent "///" (text ~ /^     / ? text : escaped(text))
  next
}

{ inContract = 0 }

/[^ ]  *\/\/ / && !/^[#}]/ {
  at = match($0, / *\/\/ /)
  print substr($0, 1, at - 1) "  ///< " escaped(substr($0, at + RLENGTH))
  next
}

{ print }
