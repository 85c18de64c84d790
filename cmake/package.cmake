# The Debian packages: cpack -G DEB
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The mirel authors <maintainers@mirel.example>")
# A summary for all would be put before the first line of each description.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL mirel)
set(CPACK_DEBIAN_MIREL_PACKAGE_NAME mirel)
set(CPACK_DEBIAN_MIREL_PACKAGE_RECOMMENDS "unixodbc, net-tools")
set(CPACK_DEBIAN_MIREL_PACKAGE_SUGGESTS "libsqliteodbc, odbc-postgresql, odbc-mariadb, nginx")
set(CPACK_DEBIAN_MIREL_DESCRIPTION
"${PROJECT_DESCRIPTION}
mirel runs on the Linux host of a database instance. It gathers facts about
the instance, one of its databases, the host and the customer, and prints
them, writes them to a file or posts them to a collection server as one JSON
document. A template with small commands says what to collect.
.
A database is any data source of unixODBC. SQLite, PostgreSQL and MariaDB
answer the default template with the catalogs that are part of this package.")

if(TARGET tarn)
  list(APPEND CPACK_COMPONENTS_ALL tarn)
endif()
set(CPACK_DEBIAN_TARN_PACKAGE_NAME tarn)
set(CPACK_DEBIAN_TARN_PACKAGE_SOURCE mirel)
set(CPACK_DEBIAN_TARN_PACKAGE_RECOMMENDS "libcurl4")  # loaded when a ClickHouse server is asked
set(CPACK_DEBIAN_TARN_PACKAGE_SUGGESTS "mirel")
set(CPACK_DEBIAN_TARN_DESCRIPTION
"Reader of the documents that mirel makes
tarn is for those who write the templates of mirel and for those who read and
keep the documents that it makes from them. It shows a document, says what did
not answer in it and what its members mean, and writes it as JSON that every
reader takes.")

# A package as CPack leaves it depends on the folder, the file system and the time of the build.
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/cmake/finish_package.cmake)
set(CPACK_MIREL_FINISH ${CMAKE_SOURCE_DIR}/deploy/debian/finish)
include(CPack)
