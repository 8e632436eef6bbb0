# One test program per folder:
#
#   qrx_add_test(unit_foundation SOURCES TextTest.cpp MODULES foundation)
#
# Every program runs with the real platform services; a test replaces what it needs by a fake.
if(QRX_BUILD_TESTS)
  find_package(GTest REQUIRED)
  include(GoogleTest)
endif()

function(qrx_add_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;MODULES;LINK;LABELS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${name} ${ARG_SOURCES} "${PROJECT_SOURCE_DIR}/tests/support/TestMain.cpp")
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  target_link_libraries(${name} PRIVATE qrx_test_support GTest::gtest GTest::gmock ${ARG_LINK})
  foreach(module IN LISTS ARG_MODULES)
    string(REPLACE "/" "_" module_target "qrx_${module}")
    target_link_libraries(${name} PRIVATE ${module_target})
  endforeach()
  gtest_discover_tests(
    ${name}
    TEST_PREFIX "${name}."
    NO_PRETTY_VALUES
    DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}")
endfunction()
