# SPDX-License-Identifier: GPL-3.0-or-later
# The Debian package, as CPack makes it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quillbox)
set(CPACK_PACKAGE_CONTACT "Quillbox developers <quillbox@quillbox.example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "get Outlook Express mail off old Windows disks")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Quillbox opens the disk of a Windows that no longer starts, from Windows 95
on, mounted or copied, and works on what Outlook Express 5 and 6 keep there:
message stores, address book, accounts, rules and signatures. It writes the
mail for the mail programs of today, deleted messages as far as they are
still there, writes the address book as vCard, CSV or LDIF, backs up
identities and restores them, and exports and merges registry files on disks
that aren't running.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
# Libraries are found by what the programs link with; these are what the window program starts or shows.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "adwaita-icon-theme, librsvg2-common, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-liberation2 | fonts-liberation")
# Debian's own list of changes is for the package alone.
quillbox_install_compressed("${CMAKE_CURRENT_SOURCE_DIR}/changelog.Debian" "${documents}" changelog.Debian)
include(CPack)
