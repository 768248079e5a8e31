# Run by CPack on the staged tree before it is packaged: removes the debug sections of every
# static library, which name the source files by the paths of the machine that built them.
file(GLOB_RECURSE archives ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*.a)
foreach(archive ${archives})
  execute_process(COMMAND ${CPACK_KELMASN_STRIP} --strip-debug ${archive} RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${CPACK_KELMASN_STRIP} --strip-debug ${archive} failed: ${result}")
  endif()
endforeach()
