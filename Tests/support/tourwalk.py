"""The steps of the guided tour in their order, each of which looks at what it has done."""

from tourconnecting import about, address, choose, connect, connected, diagnostics, disconnected, guide, leave, start
from tourdrags import drags
from tourfolders import (browse, context_menu, create_folder, delete, empty_folder, refresh, sort, taken_name,
                         transparency)
from tourtransfers import (cancel, choose_files, destination, download, overwrite, upload, upload_folder,
                           upload_question)

STEPS = (start, about, guide, diagnostics, address, connected, disconnected, choose, connect,
         context_menu, browse, sort, refresh,
         destination, download, overwrite, cancel, choose_files, upload, upload_question, upload_folder,
         create_folder, empty_folder, taken_name, drags, delete, transparency, leave)


def walk(stage):
    for step in STEPS:
        step(stage)
