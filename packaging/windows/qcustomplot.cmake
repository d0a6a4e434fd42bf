# Builds the plot library as Debian does, statically, with the package name its -dev package has.
cmake_minimum_required(VERSION 3.25)
project(qcustomplot LANGUAGES CXX)
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_AUTOMOC ON)
find_package(Qt6 REQUIRED COMPONENTS Widgets PrintSupport)
add_library(QCustomPlotQt6 STATIC qcustomplot.cpp qcustomplot.h)
target_compile_options(QCustomPlotQt6 PRIVATE -Wa,-mbig-obj)
target_link_libraries(QCustomPlotQt6 PUBLIC Qt6::Widgets Qt6::PrintSupport)
target_include_directories(QCustomPlotQt6 INTERFACE $<INSTALL_INTERFACE:include>)
install(FILES qcustomplot.h DESTINATION include)
install(TARGETS QCustomPlotQt6 EXPORT QCustomPlotQt6 DESTINATION lib)
install(EXPORT QCustomPlotQt6 NAMESPACE QCustomPlotQt6:: FILE QCustomPlotQt6Config.cmake
  DESTINATION lib/cmake/QCustomPlotQt6)
