#include "platform/qt/buffer_page.h"
#include "platform/qt/fields.h"
#include "platform/qt/form.h"
#include "platform/qt/pages.h"

namespace vkm {
namespace {

QWidget* make_project_page(ScreenView& view, Screen& s, LockMark* lock) {
    QWidget* page = view(s.fra_Batch_quantity);
    Field* path = view.field(s.texBatchFileName, 0);
    path->setReadOnly(true);
    auto* lines = column(page);
    auto* fields = form();
    fields->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    fields->addRow(caption("工程文件 / Project:"), path);
    lines->addLayout(fields);
    lines->addWidget(flow_widget({view(s.comOpenBatchFile), view(s.comSaveBatchFile)}));
    lines->addWidget(flow_widget({view(s.comLockOptions), view(s.comUnlockOptions), lock}));
    lines->addWidget(flow_widget({view(s.Command1)}));
    lines->addStretch();
    return page;
}

}  // namespace

QWidget* make_view_strip(ScreenView& view, Screen& s, OperatorQueue& queue, LockMark* lock) {
    auto* strip = new QWidget;
    auto* lines = new QVBoxLayout(strip);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(0);
    lines->addWidget(view(s.TabStrip2));
    QWidget* program_page =
        make_buffer_page(view, s.Frame7, s.txtBuffer, s.txtBuffer2, s.vscFile[0]);
    program_page->layout()->addWidget(view(s.ProgressBar2));
    for (QWidget* page :
         {program_page,
          make_buffer_page(view, s.frmDataFlash, s.txtDataFlash1, s.tetDataFlash2, s.vscFile[1]),
          make_register_page(view, s), make_memory_page(view, s),
          make_assistant_page(view, s, queue), make_project_page(view, s, lock)})
        lines->addWidget(page, 1);
    return strip;
}

}  // namespace vkm
