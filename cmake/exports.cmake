# orb_limit_exports: gives a shared library exactly the names of abi/exports.txt.
#
# The file holds one demangled name a line, as scripts/exported_names.sh prints them. On ELF systems
# it becomes a version script, so that every export carries a version and replaces nobody's symbol of
# the same name; elsewhere the visibility mark alone decides.

# The name as the linker sees it, given the one of the list.
function(orb_linker_name name result)
  foreach(pair "string=char" "wstring=wchar_t")
    string(REGEX MATCH "^([a-z]+)=(.*)$" _ "${pair}")
    string(REPLACE "std::${CMAKE_MATCH_1}"
           "std::__cxx11::basic_string<${CMAKE_MATCH_2}, std::char_traits<${CMAKE_MATCH_2}>, std::allocator<${CMAKE_MATCH_2}> >"
           name "${name}")
  endforeach()
  string(REPLACE ">>" "> >" name "${name}")
  string(REPLACE ">>" "> >" name "${name}")
  set(${result} "${name}" PARENT_SCOPE)
endfunction()

function(orb_limit_exports target)
  if(APPLE)
    return()
  endif()
  set(list ${PROJECT_SOURCE_DIR}/abi/exports.txt)
  set(script ${PROJECT_BINARY_DIR}/${target}.map)
  set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
  file(STRINGS ${list} names ENCODING UTF-8)
  set(c_names "")
  set(cxx_names "")
  foreach(name IN LISTS names)
    if(name MATCHES "^#" OR name STREQUAL "")
      continue()
    elseif(name MATCHES "^[A-Za-z_][A-Za-z0-9_]*$")
      string(APPEND c_names "    ${name};\n")
    else()
      orb_linker_name("${name}" name)
      # A result or a datum of a string type adds an ABI tag to the name.
      if(name MATCHES "\\(")
        string(REGEX REPLACE "^([^(]*)\\(" "\\1[abi:cxx11](" tagged "${name}")
      else()
        set(tagged "${name}[abi:cxx11]")
      endif()
      string(APPEND cxx_names "      \"${name}\";\n      \"${tagged}\";\n")
    endif()
  endforeach()
  if(cxx_names)
    set(cxx_names "    extern \"C++\" {\n${cxx_names}    };\n")
  endif()
  set(global "")
  if(c_names OR cxx_names)
    set(global "  global:\n${c_names}${cxx_names}")
  endif()
  set(text "ORBCOMMON_1.0 {\n${global}  local: *;\n};\n")
  file(CONFIGURE OUTPUT ${script} CONTENT "${text}" @ONLY)
  target_link_options(${target} PRIVATE "LINKER:--version-script=${script}" LINKER:-z,defs)
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
endfunction()
