# Run by cpack over the tree that it is about to pack: what Debian wants otherwise than a plain
# install has it.
set(share ${CPACK_TEMPORARY_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX}/share)
set(doc ${share}/doc/halvenor)
file(MAKE_DIRECTORY ${doc})
file(COPY_FILE ${CPACK_HALVENOR_SOURCE_DIR}/LICENSE ${doc}/copyright)
file(COPY_FILE ${CPACK_HALVENOR_SOURCE_DIR}/CHANGELOG.md ${doc}/NEWS)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${doc}/changelog "halvenor (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium

  * What has changed is in NEWS.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
file(GLOB pages ${share}/man/man1/*.1)
execute_process(COMMAND gzip -9nf ${pages} ${doc}/changelog ${doc}/NEWS
  COMMAND_ERROR_IS_FATAL ANY)
