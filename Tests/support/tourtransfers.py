"""The guided tour: downloads and uploads by their buttons."""

from toursounds import format_of
from tourstage import DEVICE_NAME, FOLDER, LONG_SOUND, TEXT_FILE, check, contents, names_in, write_texts
from waiting import wait_for

UPLOAD_TITLE = f"Upload files to '{DEVICE_NAME}:/'"
SOUNDS_ON_DEVICE = {"Harbour.wav": "Harbour.aiff", LONG_SOUND: LONG_SOUND}
FOLDER_TITLE = f"Upload a folder to '{DEVICE_NAME}:/'"
LYRICS = {"Lyrics/Harvest.txt": "The barley bends.\n", "Lyrics/Drafts/Harvest.txt": "The barley stands.\n"}
NEW_TEXT = {TEXT_FILE: "This text has come from the computer.\n"}


def destination(stage):
    target = music(stage)
    chooser = stage.quillbox.ask_for_download([FOLDER])
    stage.done("destination", "Choose where downloads go", "Download asks for the folder that is to receive it.",
               of=chooser)
    stage.slow_down()
    stage.quillbox.choose_destination(chooser, target)


def download(stage):
    show_progress(stage, f"Downloading to '{music(stage)}'", "download-progress", "Download",
                  "How far a folder has come, with everything that is in it.")
    stage.quillbox.wait_for_end_of_transfer()
    fetched = contents(music(stage))
    check_same_as_served(stage, fetched)
    stage.done("downloaded", "Downloaded", f"All {len(fetched)} files are equal to the device's, byte for byte.",
               sorted(fetched))


def overwrite(stage):
    """Downloads the same again, where one file is another one by now."""
    write_texts(music(stage) / FOLDER, {"Notes.txt": "An older text.\n"})
    stage.quillbox.start_download([FOLDER], music(stage))
    prompt = stage.quillbox.window("Copy File")
    stage.done("overwrite", "Nothing is replaced unasked", "The same folder once more: its files exist already.",
               of=prompt)
    prompt.find("Yes to all", "push button").press()
    stage.quillbox.wait_for_end_of_transfer()
    check_same_as_served(stage, contents(music(stage)))


def cancel(stage):
    """Fetches the folder to another place, and loses patience at its long sound."""
    target = stage.home / "Listen later"
    target.mkdir()
    stage.slow_down()
    stage.quillbox.start_download([FOLDER], target)
    progress = stage.quillbox.window(f"Downloading to '{target}'")
    wait_for(lambda: LONG_SOUND in progress.find("Current item").words, f"'{LONG_SOUND}' on its way")
    progress.find("Cancel", "push button").press()
    stage.quillbox.wait_for_end_of_transfer()
    stage.hurry()
    arrived, served = contents(target), contents(stage.served)
    check(all(served.get(name) == arrived[name] for name in arrived), f"{sorted(arrived)} are whole files")
    check(f"{FOLDER}/{LONG_SOUND}" not in arrived, f"the download ended before '{LONG_SOUND}' had arrived")
    stage.done("cancelled", "Cancel", "A transfer under way can be stopped. What has arrived whole is kept, "
               "and the device is connected as before.", sorted(arrived), of=stage.quillbox.main)


def choose_files(stage):
    chooser = stage.quillbox.ask_for_upload(UPLOAD_TITLE)
    stage.done("files", "Choose what to upload", "Upload asks for the files that are to be sent.", of=chooser)
    stage.slow_down()
    stage.quillbox.choose_files(chooser, music(stage) / FOLDER, SOUNDS_ON_DEVICE.values())


def upload(stage):
    """Sends sounds of other formats than the device plays."""
    expected = {*names_in(stage.served), *SOUNDS_ON_DEVICE}
    show_progress(stage, "Uploading files", "upload-progress", "Upload", "Sounds are converted on their way.")
    stage.quillbox.wait_for_listing("/", expected)
    notes = [f"{source} → {name}, {format_of(stage.served / name)}" for name, source in SOUNDS_ON_DEVICE.items()]
    check(all(note.endswith("16-bit WAV") for note in notes), f"{notes} are 16-bit WAV files")
    stage.done("uploaded", "Uploaded and converted", "The device's folder shows what has arrived.", notes,
               of=stage.quillbox.main)


def upload_question(stage):
    """Sends a text whose name the device has; the selection, which a new listing clears, tells the end of that."""
    write_texts(stage.home / "Texts", NEW_TEXT)
    stage.quillbox.select(TEXT_FILE)
    stage.quillbox.start_upload(stage.home / "Texts", NEW_TEXT, UPLOAD_TITLE)
    prompt = stage.quillbox.window("Copy File")
    stage.done("upload-question", "Nor on the device",
               f"It holds a '{TEXT_FILE}' already: Quillbox asks before it sends another one.", of=prompt)
    prompt.find("Yes", "push button").press()
    stage.quillbox.wait_for_end_of_transfer()
    check((stage.served / TEXT_FILE).read_text() == NEW_TEXT[TEXT_FILE], f"'{TEXT_FILE}' has been replaced")


def upload_folder(stage):
    write_texts(stage.home, LYRICS)
    stage.wait_for_keyboard()
    stage.desktop.keys("ctrl+shift+u")
    chooser = stage.quillbox.window(FOLDER_TITLE)
    stage.done("folder", "Choose a folder to upload", "Upload Folder in the File menu sends one with everything in it.",
               of=chooser)
    stage.quillbox.choose_destination(chooser, stage.home / "Lyrics")
    stage.quillbox.wait_for_listing("/", {*names_in(stage.served), "Lyrics"})
    arrived = {path: (stage.served / path).read_text() for path in LYRICS}
    check(arrived == LYRICS, f"{sorted(arrived)} are on the device")


def music(stage):
    """The folder that receives what is fetched."""
    folder = stage.home / "Music"
    folder.mkdir(exist_ok=True)
    return folder


def check_same_as_served(stage, fetched):
    served = contents(stage.served / FOLDER)
    check({f"{FOLDER}/{name}": content for name, content in served.items()} == fetched,
          f"the files in {sorted(fetched)} equal the device's {sorted(served)}")


def show_progress(stage, title, *step):
    """Takes a picture of a transfer on its way; its rest goes as fast as it can."""
    progress = stage.quillbox.window(title)
    details = progress.find("Details", "label")
    wait_for(lambda: details.description.count(" · ") == 2,
             lambda: f"rate and time left in '{title}', not '{details.description}'")
    stage.done(*step, of=progress)
    stage.hurry()
