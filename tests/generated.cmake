# Generated sources stay what their generators make (included from tests/CMakeLists.txt).
#
# gamma_tables_match_generator: reruns tools/gamma/gen_gamma.py in --check mode, which writes nothing and
# fails with a diff when src/profiles/gamma_curves.c or src/refresh/gamma_highgain.c differ from its output.
# The generator must run on a plain Debian 12 python3, so /usr/bin/python3 is preferred to whatever else is
# first on PATH.
if(NOT DEFINED Python3_EXECUTABLE AND EXISTS /usr/bin/python3)
  set(Python3_EXECUTABLE /usr/bin/python3 CACHE FILEPATH "Python 3 interpreter for the table generators")
endif()
find_package(Python3 COMPONENTS Interpreter)

if(Python3_Interpreter_FOUND)
  # The interpreter path, not the imported target: the generator runs on the build machine, also in
  # cross builds where CTest would otherwise put the target emulator in front of it.
  get_filename_component(_isptune_root ${CMAKE_CURRENT_LIST_DIR}/.. ABSOLUTE)
  add_test(NAME gamma_tables_match_generator
           COMMAND ${Python3_EXECUTABLE} ${_isptune_root}/tools/gamma/gen_gamma.py --check --root ${_isptune_root})
  set_tests_properties(gamma_tables_match_generator PROPERTIES LABELS "generated" TIMEOUT 60)
else()
  message(WARNING "python3 not found: the test gamma_tables_match_generator is not defined")
endif()
