#include <gtest/gtest.h>

#include <QGuiApplication>
#include <cstdio>

#include "reports/pdf_renderer.h"
#include "sample_documents.h"

/// Runs the tests; with --print-sample it prints a sample's file instead, for comparison with another process's.
int main(int argc, char** argv) {
  QGuiApplication application(argc, argv);
  if (application.arguments().contains(QLatin1String("--print-sample"))) {
    const auto pdf = thalvorn::renderPdf(thalvorn::sampleOfEverything()).value_or(QByteArray());
    return std::fwrite(pdf.constData(), 1, static_cast<std::size_t>(pdf.size()), stdout) > 0 ? 0 : 1;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
