// A "Burn to CD" window: a list that takes files and playlists by drag and drop, a bar of what
// fits, and the burn. `quarner-qt --image mix.cue` burns to a disc image; --help lists the options.
#include <QtWidgets>
#include <algorithm>
#include <quarner/desktop.h>
#include <quarner/playlist.h>
#include <quarner/quarner.h>

namespace {

QString text(const std::string& bytes) { return QString::fromStdString(bytes); }

/// The files that were dropped, chosen or named. A playlist stands for its entries; one that cannot
/// be read stays, and the project then says why it is refused.
std::vector<std::string> pathsOf(const QList<QUrl>& urls) {
    std::vector<std::string> paths;
    for (const QUrl& url : urls) {
        const QByteArray name =
            url.isLocalFile() ? QFile::encodeName(url.toLocalFile()) : url.toEncoded();
        std::vector<std::string> entries = {name.toStdString()};
        if (quarner::isPlaylist(entries.front()))
            entries = quarner::readPlaylist(entries.front()).value_or(entries);
        paths.insert(paths.end(), entries.begin(), entries.end());
    }
    return paths;
}

template <typename Indexes>
std::set<std::size_t> rowsOf(const Indexes& indexes) {
    std::set<std::size_t> rows;
    for (const auto& index : indexes)
        if (index.isValid())
            rows.insert(static_cast<std::size_t>(index.row()));
    return rows;
}

/// Rows that are being dragged. They stay the same rows, whatever is added or removed until they
/// are dropped.
struct DraggedRows : QMimeData {
    static constexpr char type[] = "application/x-quarner-rows";
    QList<QPersistentModelIndex> rows;
};

/// The list of a project for Qt's views. A project and Qt report changes by the same numbers.
class Tracks : public QAbstractTableModel, public quarner::DiscProjectObserver {
public:
    enum Column { Title, Artist, Duration, ColumnCount };
    explicit Tracks(quarner::DiscProject& project) : _project(project) {}

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : number(_rows.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : ColumnCount;
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
            return {};
        return QStringList{"Title", "Artist", "Duration"}.value(section);
    }
    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid() || role != Qt::DisplayRole)
            return {};
        const quarner::DiscItem& item = *_rows[static_cast<std::size_t>(index.row())];
        if (index.column() == Artist)
            return text(item.artist);
        if (index.column() == Duration)
            return text(item.duration);
        return text(item.title.empty() ? item.displayName : item.title);
    }

    // Drag and drop: rows are moved, files are copied, and both go between rows.
    Qt::ItemFlags flags(const QModelIndex& index) const override {
        return index.isValid() ? QAbstractTableModel::flags(index) | Qt::ItemIsDragEnabled
                               : Qt::ItemIsDropEnabled;
    }
    Qt::DropActions supportedDropActions() const override {
        return Qt::CopyAction | Qt::MoveAction;
    }
    QStringList mimeTypes() const override { return {DraggedRows::type, "text/uri-list"}; }
    QMimeData* mimeData(const QModelIndexList& indexes) const override {
        auto* const dragged = new DraggedRows; // the drag owns it
        dragged->setData(DraggedRows::type, {});
        dragged->rows = {indexes.begin(), indexes.end()};
        return dragged;
    }
    bool dropMimeData(const QMimeData* data, Qt::DropAction /*action*/, int row, int /*column*/,
                      const QModelIndex& /*parent*/) override {
        const std::size_t to = row < 0 ? _rows.size() : static_cast<std::size_t>(row);
        if (data->hasUrls())
            _project.add(pathsOf(data->urls()), to);
        else if (const auto* const dragged = dynamic_cast<const DraggedRows*>(data))
            _project.move(rowsOf(dragged->rows), to);
        return true;
    }

    void rowsInserted(std::size_t first, const quarner::DiscItems& items) override {
        beginInsertRows({}, number(first), number(first + items.size()) - 1);
        _rows.insert(at(first), items.begin(), items.end());
        endInsertRows();
    }
    void rowsRemoved(std::size_t first, std::size_t count) override {
        beginRemoveRows({}, number(first), number(first + count) - 1);
        _rows.erase(at(first), at(first + count));
        endRemoveRows();
    }
    void rowsMoved(std::size_t first, std::size_t count, std::size_t to) override {
        beginMoveRows({}, number(first), number(first + count) - 1, {}, number(to));
        if (to > first)
            std::rotate(at(first), at(first + count), at(to));
        else
            std::rotate(at(to), at(first), at(first + count));
        endMoveRows();
    }

private:
    static int number(std::size_t row) { return static_cast<int>(row); }
    quarner::DiscItems::iterator at(std::size_t row) { return _rows.begin() + number(row); }

    quarner::DiscProject& _project;
    quarner::DiscItems _rows;
};

/// The window. It opens a dialogue only for what the user does: inside a report of the project, a
/// dialogue would hold up the reports after it.
class Window final : public QMainWindow, public quarner::DiscProjectObserver {
public:
    Window() {
        project.addObserver(_tracks);
        setUpList();
        layOut();
        Window::drivesChanged();
        Window::capacityChanged();
    }
    void choose(const std::string& driveName) { _drives->setCurrentText(text(driveName)); }

    quarner::DiscProject project{quarner::DiscProject::Kind::Audio};

private:
    void fileRefused(const std::string& /*path*/, quarner::RefusalReason /*reason*/,
                     const std::string& why) override {
        tell(text(why));
    }
    void addingProgress(const std::string& name, std::size_t index, std::size_t of) override {
        statusBar()->showMessage(QString("Adding %1 of %2: %3").arg(index).arg(of).arg(text(name)));
    }
    void addingEnded(bool /*isCanceled*/) override {
        statusBar()->clearMessage();
        capacityChanged();
    }
    void drivesChanged() override {
        const QVariant chosen = _drives->currentData();
        const QSignalBlocker blocker(_drives);
        _drives->clear();
        for (const quarner::DiscDrive& drive : project.drives())
            if (drive.canWrite)
                _drives->addItem(text(drive.name), QVariant::fromValue(drive.id));
        _drives->setCurrentIndex(std::max(_drives->findData(chosen), 0));
    }
    void capacityChanged() override {
        const quarner::DiscCapacity space = project.capacity(chosenDrive());
        const std::string rest = " of " + space.totalText + ", " + space.verdict;
        _space->setFormat(text(space.usedText + (space.isDiscKnown ? rest : " used")));
        _space->setMaximum(std::max(static_cast<int>(space.total), 1));
        _space->setValue(std::min(static_cast<int>(space.used), _space->maximum()));

        const std::vector<quarner::DiscProblem> problems = project.problems(chosenDrive());
        const bool isBurning = project.isBurning();
        const bool isProblem = !problems.empty() && !isBurning;
        if (_drives->count() == 0)
            _notice->setText("Attach a drive that writes CDs.");
        else if (isProblem)
            _notice->setText(text(problems[0].text + ' ' + problems[0].advice));
        _notice->setVisible(isProblem);
        _burn->setText(isBurning ? "Cancel" : "Burn");
        _burn->setDisabled(isProblem || (project.isAdding() && !isBurning));
    }
    void burnProgress(const quarner::DiscBurnProgress& progress) override {
        QString step = text(progress.text);
        if (!progress.timeLeftText.empty())
            step += ", " + text(progress.timeLeftText) + " left";
        _progress->setFormat(step);
        _progress->setValue(static_cast<int>(progress.fraction * _progress->maximum()));
        _progress->show();
    }
    void burnEnded(const quarner::DiscBurnEnd& end) override {
        _progress->setFormat(text(end.text));
        if (end.outcome == quarner::DiscBurnEnd::Outcome::Failed)
            tell(text(end.text + ' ' + end.info.path + ' ' + end.info.message + ' ' + end.advice));
    }

    void addFiles() {
        QStringList patterns;
        for (const auto& list :
             {quarner::DiscProject::fileExtensions(), quarner::playlistExtensions()})
            for (const std::string& extension : list)
                patterns.append("*." + text(extension));
        const QString types = "Music and playlists (" + patterns.join(' ') + ')';
        project.add(pathsOf(QFileDialog::getOpenFileUrls(this, "Add Files", {}, types)));
    }
    void remove() { project.remove(rowsOf(_list->selectionModel()->selectedRows())); }
    void burnOrCancel() {
        if (project.isBurning())
            return project.cancelBurn();
        const quarner::DiscDrive::Id id = chosenDrive();
        const auto drive = project.drive(id);
        const bool isErased = drive && drive->isErasable && !drive->isBlank;
        if (!isErased || confirms("Erase the disc? Its content will be lost."))
            project.burn(id, _title->text().toStdString());
    }
    void closeEvent(QCloseEvent* event) override {
        const QString question = "Stop the burn? The disc becomes unusable.";
        event->setAccepted(!project.isBurning() || confirms(question));
    }
    bool confirms(const QString& question) {
        return QMessageBox::question(this, windowTitle(), question) == QMessageBox::Yes;
    }
    void tell(const QString& line) {
        if (_messages->isHidden()) // the user has read the last ones, and closed them
            _lines->clear();
        _lines->addItem(line.simplified());
        _messages->show();
    }
    quarner::DiscDrive::Id chosenDrive() const { // 0, which is no drive's, if there is none
        return _drives->currentData().value<quarner::DiscDrive::Id>();
    }

    void setUpList() {
        _list->setModel(_tracks.get());
        _list->setRootIsDecorated(false);
        _list->setAlternatingRowColors(true);
        _list->setSelectionMode(QAbstractItemView::ExtendedSelection);
        _list->setDragDropMode(QAbstractItemView::DragDrop);
        _list->setDefaultDropAction(Qt::MoveAction);
        _list->header()->setStretchLastSection(false);
        _list->header()->setSectionResizeMode(QHeaderView::Stretch);
        _list->header()->setSectionResizeMode(Tracks::Duration, QHeaderView::ResizeToContents);
    }
    void layOut() {
        QToolBar* const tools = addToolBar("Edit");
        tools->setMovable(false);
        tools->addAction("Add Files…", QKeySequence::Open, this, [this] { addFiles(); });
        tools->addAction("Remove", QKeySequence::Delete, this, [this] { remove(); });
        tools->addAction("Stop Adding", this, [this] { project.cancelAdding(); });
        connect(_drives, &QComboBox::currentIndexChanged, this, [this] { capacityChanged(); });
        connect(_burn, &QPushButton::clicked, this, [this] { burnOrCancel(); });

        _title->setPlaceholderText("Title of the disc");
        _notice->setWordWrap(true);
        _progress->setMaximum(1000);
        _progress->hide();
        _lines->setMaximumHeight(100);
        _messages->setWidget(_lines);
        _messages->hide();
        addDockWidget(Qt::BottomDockWidgetArea, _messages);

        auto* const page = new QWidget;
        auto* const grid = new QGridLayout(page);
        grid->addWidget(_list, 0, 0, 1, 3);
        grid->addWidget(_space, 1, 0, 1, 3);
        grid->addWidget(_notice, 2, 0, 1, 3);
        grid->addWidget(_drives, 3, 0);
        grid->addWidget(_title, 3, 1);
        grid->addWidget(_burn, 3, 2);
        grid->addWidget(_progress, 4, 0, 1, 3);
        setCentralWidget(page);
        setWindowTitle("Burn to CD");
        resize(640, 480);
    }

    const std::shared_ptr<Tracks> _tracks = std::make_shared<Tracks>(project);
    QTreeView* const _list = new QTreeView(this);
    QProgressBar* const _space = new QProgressBar(this);
    QLabel* const _notice = new QLabel(this);
    QComboBox* const _drives = new QComboBox(this);
    QLineEdit* const _title = new QLineEdit(this);
    QPushButton* const _burn = new QPushButton(this);
    QProgressBar* const _progress = new QProgressBar(this);
    QDockWidget* const _messages = new QDockWidget("Messages", this);
    QListWidget* const _lines = new QListWidget(_messages);
};

/// Burns once the files are added, and ends the program.
struct AtOnce : quarner::DiscProjectObserver {
    AtOnce(quarner::DiscProject& burned, std::string on) : project(burned), drive(std::move(on)) {}
    void addingEnded(bool /*isCanceled*/) override {
        project.burn(project.driveNamed(drive).value_or(0));
    }
    void burnEnded(const quarner::DiscBurnEnd& end) override {
        isDone = end.outcome == quarner::DiscBurnEnd::Outcome::Done;
        QApplication::quit();
    }
    quarner::DiscProject& project;
    const std::string drive;
    bool isDone = false;
};

} // namespace

int main(int count, char** arguments) {
    QApplication app(count, arguments);
    QCommandLineParser options;
    options.addHelpOption();
    options.addOption({"image", "Burn to a disc image, a .cue file.", "file"});
    options.addOption({"burn", "Burn to it at once, and exit: 0 if burnt and verified, else 1."});
    options.addPositionalArgument("files", "Music and playlists to add.", "[files...]");
    options.process(app);

    quarner::installDesktopPlatform({.postToMain = [&app](std::function<void()> work) {
        QMetaObject::invokeMethod(&app, std::move(work), Qt::QueuedConnection);
    }});
    const std::string image =
        quarner::addImageDrive({.path = QFile::encodeName(options.value("image")).toStdString()});
    if (options.isSet("image") && image.empty())
        options.showHelp(2); // and exit
    bool isDone = true;
    {
        const auto window = std::make_shared<Window>();
        const auto atOnce = std::make_shared<AtOnce>(window->project, image);
        window->project.addObserver(window);
        if (options.isSet("burn"))
            window->project.addObserver(atOnce);
        QList<QUrl> files;
        for (const QString& file : options.positionalArguments())
            files.append(QUrl::fromLocalFile(QFileInfo(file).absoluteFilePath()));
        window->project.add(pathsOf(files));
        window->choose(image);
        window->show();
        QApplication::exec();
        isDone = atOnce->isDone || !options.isSet("burn");
    }
    quarner::uninstallDesktopPlatform(); // ends what a closed window has cancelled
    return isDone ? 0 : 1;
}
