# Test fixtures are .rc scripts compiled at build time by the MinGW resource
# compiler and linked into resource-only PE32 and PE32+ images.
find_program(WINDRES64 x86_64-w64-mingw32-windres)
find_program(WINDRES32 i686-w64-mingw32-windres)
find_program(MINGW_LD64 x86_64-w64-mingw32-ld)
find_program(MINGW_LD32 i686-w64-mingw32-ld)
find_program(HOST_CPP cpp)

# tervane_pe_fixture(<rc file> <out var>): builds <name>.x64.dll and
# <name>.x86.dll in ${CMAKE_BINARY_DIR}/fixtures and appends both paths to
# <out var>. EXTRA_OBJECTS_64/32 name further objects to link (e.g. code).
function(tervane_pe_fixture rc outvar)
  cmake_parse_arguments(ARG "" "" "LDFLAGS" ${ARGN})
  get_filename_component(base ${rc} NAME_WE)
  get_filename_component(rcdir ${rc} DIRECTORY)
  set(dir ${CMAKE_BINARY_DIR}/fixtures)
  set(outs)
  foreach(arch x64 x86)
    if(arch STREQUAL x64)
      set(windres ${WINDRES64})
      set(ld ${MINGW_LD64})
    else()
      set(windres ${WINDRES32})
      set(ld ${MINGW_LD32})
    endif()
    set(obj ${dir}/${base}.${arch}.o)
    set(out ${dir}/${base}.${arch}.dll)
    add_custom_command(
      OUTPUT ${out}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${dir}
      COMMAND ${windres} --preprocessor=${HOST_CPP} -I ${rcdir} -I ${CMAKE_SOURCE_DIR}/tests/fixtures
              ${rc} -O coff -o ${obj}
      COMMAND ${ld} -shared -e 0 ${ARG_LDFLAGS} ${obj} -o ${out}
      DEPENDS ${rc}
      IMPLICIT_DEPENDS CXX ${rc}
      COMMENT "Compiling fixture ${base} (${arch})"
      VERBATIM)
    list(APPEND outs ${out})
  endforeach()
  set(${outvar} ${${outvar}} ${outs} PARENT_SCOPE)
endfunction()
