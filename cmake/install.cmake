# What "cmake --install" puts where. The paths follow GNUInstallDirs. Each program is a component, and a package of
# its own.
include(GNUInstallDirs)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME mirel)

install(TARGETS mirel)
install(FILES docs/mirel.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES deploy/completion/mirel DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)

# The catalogs: a module that SQLite loads, a script for each server; and what makes an instance of a server.
if(TARGET mirel_catalog_sqlite)
  install(TARGETS mirel_catalog_sqlite LIBRARY DESTINATION lib/mirel)
endif()
set(catalogs ${CMAKE_INSTALL_DATADIR}/mirel)
install(DIRECTORY catalog/postgresql catalog/mariadb catalog/instance DESTINATION ${catalogs})
install(PROGRAMS catalog/instance/create DESTINATION ${catalogs}/instance)
install(PROGRAMS catalog/instance/bin/kato catalog/instance/bin/katolevel catalog/instance/bin/katoset
  DESTINATION ${catalogs}/instance/bin)
install(PROGRAMS catalog/postgresql/instance/create DESTINATION ${catalogs}/postgresql/instance)
install(PROGRAMS catalog/mariadb/instance/create DESTINATION ${catalogs}/mariadb/instance)

install(FILES CHANGELOG.md LICENSE README.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN "*.md" PATTERN "*.png"
  PATTERN facts.md EXCLUDE)
set(examples ${CMAKE_INSTALL_DOCDIR}/examples)
install(DIRECTORY deploy/collection-server deploy/fleet deploy/systemd DESTINATION ${examples} USE_SOURCE_PERMISSIONS)
install(FILES sample/schema.sql sample/data.sql DESTINATION ${examples}/sample)
install(PROGRAMS sample/create DESTINATION ${examples}/sample)
install(PROGRAMS sample/bin/kato sample/bin/katolevel sample/bin/katoset DESTINATION ${examples}/sample/bin)

if(TARGET tarn)
  set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME tarn)
  set(documents ${CMAKE_INSTALL_DATADIR}/doc/tarn)
  install(TARGETS tarn)
  install(FILES ${CMAKE_BINARY_DIR}/tarn.dir/tarn.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${CMAKE_BINARY_DIR}/tarn.dir/completion/tarn DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES CHANGELOG.md LICENSE docs/facts.md DESTINATION ${documents})
endif()
