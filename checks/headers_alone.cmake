# Every header compiles by itself: a source file that includes it and nothing
# else is made for each of them, and the target `headers_alone` compiles them all.
# Not part of the ordinary build; the test of the same name builds it.
#
# Its being a target of the build means that only what has changed is compiled again.

find_package(Qt6 QUIET COMPONENTS Widgets SerialPort)
set(with_window OFF)
if(VKM_WINDOW AND Qt6_FOUND)
  set(with_window ON)
endif()

file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${CMAKE_SOURCE_DIR}
  ${CMAKE_SOURCE_DIR}/src/*.h ${CMAKE_SOURCE_DIR}/tools/*.h ${CMAKE_SOURCE_DIR}/tests/support/*.h)
set(sources)
foreach(header IN LISTS headers)
  if(header MATCHES "^src/platform/qt/" AND NOT with_window)
    continue()
  endif()
  set(source ${CMAKE_CURRENT_BINARY_DIR}/headers_alone/${header}.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT "#include \"${header}\"\n" @ONLY)
  list(APPEND sources ${source})
endforeach()

add_library(headers_alone OBJECT EXCLUDE_FROM_ALL ${sources})
target_include_directories(headers_alone
  PRIVATE ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/tools ${CMAKE_SOURCE_DIR}/tests)
target_compile_options(headers_alone PRIVATE -Werror -O0)
target_link_libraries(headers_alone PRIVATE GTest::gtest)
if(with_window)
  target_link_libraries(headers_alone PRIVATE Qt6::Widgets Qt6::SerialPort)
endif()

add_test(NAME headers_alone
  COMMAND ${CMAKE_COMMAND} --build ${CMAKE_BINARY_DIR} --target headers_alone)
