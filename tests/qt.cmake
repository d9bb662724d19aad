# Suites that need Qt. They draw off screen.
function(vkm_qt_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests ${CMAKE_SOURCE_DIR}/tools)
  target_link_libraries(${name} PRIVATE vkm_qt ${ARG_LIBS} GTest::gtest_main)
  target_compile_options(${name} PRIVATE -O0)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
    PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()

vkm_qt_test(qt_port_test
  SOURCES qt_contract_test.cpp qt_serial_port_test.cpp qt_pseudo_terminal.cpp)
vkm_qt_test(qt_screen_test SOURCES qt_screen_test.cpp qt_buffer_page_test.cpp qt_text_mapping_test.cpp)
vkm_qt_test(qt_option_panel_test SOURCES qt_option_panel_test.cpp)
vkm_qt_test(qt_loop_test SOURCES qt_loop_test.cpp)
vkm_qt_test(qt_pages_test SOURCES qt_long_text_test.cpp qt_monitor_pages_test.cpp qt_assistant_page_test.cpp qt_other_downloads_test.cpp qt_pseudo_terminal.cpp)
vkm_qt_test(qt_code_page_test SOURCES qt_code_page_test.cpp LIBS vkm_test_support)
vkm_qt_test(qt_terminal_settings_test SOURCES qt_terminal_settings_test.cpp LIBS vkm_test_support)
