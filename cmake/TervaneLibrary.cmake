# One static library per folder, made of every .cpp below it, so that adding a
# file needs no edit here. A folder without sources yet is an interface library.
# Position-independent, since the component server links them into a shared
# object; SHARED makes a shared library instead.
# A shared object binds every symbol when it is linked; not in the fuzz build,
# where clang leaves the sanitizers' runtime to the program that loads it.
if(TERVANE_FUZZ)
  set(TERVANE_NO_UNDEFINED "")
else()
  set(TERVANE_NO_UNDEFINED -Wl,--no-undefined)
endif()

function(tervane_folder_library name)
  cmake_parse_arguments(ARG "SHARED" "" "DEPS;EXCLUDE" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  foreach(pattern IN LISTS ARG_EXCLUDE)
    list(FILTER sources EXCLUDE REGEX "${pattern}")
  endforeach()
  if(sources)
    if(ARG_SHARED)
      add_library(${name} SHARED ${sources})
      target_link_options(${name} PRIVATE ${TERVANE_NO_UNDEFINED})
    else()
      add_library(${name} STATIC ${sources})
    endif()
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${ARG_DEPS})
  else()
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${CMAKE_SOURCE_DIR})
    target_link_libraries(${name} INTERFACE ${ARG_DEPS})
  endif()
endfunction()
