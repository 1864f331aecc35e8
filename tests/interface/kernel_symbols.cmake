# Objects compiled for one vector width define no symbol outside its namespace that the linker can see. An inline function emitted there with wide
# instructions would be merged with its narrow copies and crash an older processor.
# cmake "-DOBJECTS=a.o;b.o" -DWIDTH=256 -DNM=... -P kernel_symbols.cmake
if(NOT OBJECTS)
  message(FATAL_ERROR "no objects to look at")
endif()
execute_process(COMMAND "${NM}" --defined-only --extern-only ${OBJECTS} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" lines "${symbols}")
set(count 0)
set(strangers "")
foreach(line IN LISTS lines)
  if(line MATCHES "^[0-9a-f]+ [A-Za-z] (.+)$")
    set(symbol "${CMAKE_MATCH_1}")
    math(EXPR count "${count} + 1")
    # lyr::wN::..., the constants and functions of nested names in it, and what is local to them: lambdas that an unoptimised build calls.
    # The 32-bit compilers' thunks for the program counter are two plain instructions; the address sanitizer marks each datum by its own name,
    # and the undefined-behaviour sanitizer describes the types of functions, which is data.
    if(NOT symbol MATCHES "^(__odr_asan\\.)?_ZZ?N[VK]*3lyr4w${WIDTH}[0-9]|^__x86\\.get_pc_thunk\\.|^_ZT[IS]F")
      list(APPEND strangers "${symbol}")
    endif()
  endif()
endforeach()
if(strangers)
  list(JOIN strangers "\n  " text)
  message(FATAL_ERROR "outside lyr::w${WIDTH}:\n  ${text}")
endif()
if(count EQUAL 0)
  message(FATAL_ERROR "no symbols were found")
endif()
message("${count} symbols, all in lyr::w${WIDTH}")
