# Read by cpack for each kind of package. A .deb has a fixed place, which the
# installation must know (DESTDIR stands before it); an archive has none.

if(CPACK_GENERATOR STREQUAL "DEB")
  set(CPACK_SET_DESTDIR ON)
  set(CPACK_INSTALL_PREFIX /usr)
endif()
