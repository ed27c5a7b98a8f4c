# `cmake --install build --prefix P` lays out the SDK for class-library authors:
# P/include/zel, P/lib/libzel_sdk.a, the CMake package and the pkg-config file,
# P/bin/ncl with 系统.ncl and 工具.ncl in P/lib/zel, and the docs. Everything
# is found relative to where it lies, so the prefix can move.
include(CMakePackageConfigHelpers)

install(DIRECTORY include/zel DESTINATION include)
install(TARGETS zel_sdk ARCHIVE DESTINATION lib)
install(TARGETS zel_tools LIBRARY DESTINATION lib/zel)
if(TARGET ncl)
  install(TARGETS zel_system LIBRARY DESTINATION lib/zel)
  install(TARGETS ncl RUNTIME DESTINATION bin)
  set_target_properties(ncl PROPERTIES INSTALL_RPATH "$ORIGIN/../lib/zel")
endif()

set(zel_config_dir ${CMAKE_BINARY_DIR}/package)
configure_file(cmake/zelConfig.cmake.in ${zel_config_dir}/zelConfig.cmake @ONLY)
# A package of 32-bit code used from projects whose compiler probe is 64-bit:
# the version file must not compare pointer sizes.
write_basic_package_version_file(${zel_config_dir}/zelConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
configure_file(cmake/zel.pc.in ${zel_config_dir}/zel.pc @ONLY)
install(FILES ${zel_config_dir}/zelConfig.cmake ${zel_config_dir}/zelConfigVersion.cmake
  DESTINATION lib/cmake/zel)
install(FILES host/run_script_test.cmake DESTINATION lib/cmake/zel RENAME zelRunScript.cmake)
install(FILES ${zel_config_dir}/zel.pc DESTINATION lib/pkgconfig)

install(FILES README.md LICENSE DESTINATION share/doc/zel)
install(DIRECTORY docs/ DESTINATION share/doc/zel)
