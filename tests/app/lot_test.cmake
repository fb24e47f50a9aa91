# The real program in batch mode, in a fresh folder:
#   cmake -DPROGRAMME=<binary> -DDOSSIER=<folder> -P lot_test.cmake
# First run: a chain of links with no project present. Second run: the project
# it wrote is loaded and saved again unchanged.
if(NOT PROGRAMME OR NOT DOSSIER)
  message(FATAL_ERROR "lot_test.cmake needs -DPROGRAMME=<binary> and -DDOSSIER=<folder>")
endif()

file(REMOVE_RECURSE "${DOSSIER}")
file(MAKE_DIRECTORY "${DOSSIER}")
set(projet "${DOSSIER}/projet.tsl")

# The arguments are joined by blanks: -src=image.bmp +opt:qui="a:b" ::-fin:
# Links: "-src=image.bmp +opt", "qui="a:b" ", "" and "-fin"; the colon in quotes
# stays inside its link, and the trailing ':' adds no link.
execute_process(COMMAND "${PROGRAMME}" "-src=image.bmp" "+opt:qui=\"a:b\"" "::-fin:"
  WORKING_DIRECTORY "${DOSSIER}"
  RESULT_VARIABLE code OUTPUT_VARIABLE sortie ERROR_VARIABLE erreurs)
if(NOT code STREQUAL "0")
  message(FATAL_ERROR "batch run: exit code '${code}', expected 0\n${erreurs}")
endif()

# src and opt are known; with no target kind the first link does nothing.
set(attendu "")
foreach(nom qui fin)
  string(APPEND attendu "[Debuging] Unrecognized convertion identifier: ${nom}\n")
endforeach()
if(NOT erreurs STREQUAL attendu)
  message(FATAL_ERROR "batch run: standard error is\n${erreurs}\nexpected\n${attendu}")
endif()

if(NOT EXISTS "${projet}")
  message(FATAL_ERROR "batch run: no projet.tsl in ${DOSSIER}")
endif()
# Compared as hex: the file is Latin-1.
string(HEX "#Fichier de projet Tessellarium\n" entete)
string(LENGTH "${entete}" longueur)
math(EXPR longueur "${longueur} / 2")
file(READ "${projet}" debut LIMIT ${longueur} HEX)
if(NOT debut STREQUAL entete)
  message(FATAL_ERROR "batch run: projet.tsl does not begin with the header line")
endif()
file(READ "${projet}" premier HEX)
string(HEX "\n#Project tree elements\n .section fichiers\n Fin\n" fichiers)
string(FIND "${premier}" "${fichiers}" position)
math(EXPR impair "${position} % 2")
if(position EQUAL -1 OR impair)
  message(FATAL_ERROR "batch run: projet.tsl has no empty element section")
endif()

# A lone '-' runs no conversion: the project is read and written back as it was.
execute_process(COMMAND "${PROGRAMME}" "-"
  WORKING_DIRECTORY "${DOSSIER}"
  RESULT_VARIABLE code OUTPUT_VARIABLE sortie ERROR_VARIABLE erreurs)
if(NOT code STREQUAL "0" OR NOT erreurs STREQUAL "")
  message(FATAL_ERROR "second batch run: exit code '${code}', standard error '${erreurs}'")
endif()
file(READ "${projet}" second HEX)
if(NOT second STREQUAL premier)
  message(FATAL_ERROR "second batch run: projet.tsl changed when loaded and saved again")
endif()
