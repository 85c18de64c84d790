# What "cmake --install" puts where. The paths follow GNUInstallDirs.
include(GNUInstallDirs)

install(TARGETS mirel)
install(FILES docs/mirel.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES deploy/completion/mirel DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)

# The catalogs: a module that SQLite loads, a script for PostgreSQL.
if(TARGET mirel_catalog_sqlite)
  install(TARGETS mirel_catalog_sqlite LIBRARY DESTINATION lib/mirel)
endif()
install(DIRECTORY catalog/postgresql DESTINATION ${CMAKE_INSTALL_DATADIR}/mirel)

install(FILES CHANGELOG.md LICENSE README.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN "*.md")
set(examples ${CMAKE_INSTALL_DOCDIR}/examples)
install(DIRECTORY deploy/collection-server deploy/systemd DESTINATION ${examples})
install(FILES sample/schema.sql sample/data.sql DESTINATION ${examples}/sample)
install(PROGRAMS sample/create DESTINATION ${examples}/sample)
install(PROGRAMS sample/bin/kato sample/bin/katolevel sample/bin/katoset DESTINATION ${examples}/sample/bin)
