# The Debian package: cpack -G DEB
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The mirel authors <maintainers@mirel.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "unixodbc, net-tools")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "libsqliteodbc, odbc-postgresql, nginx")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"mirel runs on the Linux host of a database instance. It gathers facts about
the instance, one of its databases, the host and the customer, and prints
them, writes them to a file or posts them to a collection server as one JSON
document. A template with small commands says what to collect.
.
A database is any data source of unixODBC. SQLite and PostgreSQL answer the
default template with the catalogs that are part of this package.")

# The package as CPack leaves it depends on the folder, the file system and the time of the build.
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/cmake/finish_package.cmake)
set(CPACK_MIREL_FINISH ${CMAKE_SOURCE_DIR}/deploy/debian/finish)
include(CPack)
