# Fails unless the file README holds the text of the file PROGRAM word for word.
file(READ "${PROGRAM}" program)
file(READ "${README}" readme)
string(FIND "${readme}" "${program}" place)
if(place EQUAL -1)
  message(FATAL_ERROR "${README} does not show ${PROGRAM} as it is")
endif()
