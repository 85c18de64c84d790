"""Real servers, private to who starts them: PostgreSQL, MariaDB, ClickHouse, and the collection server's nginx."""
import os
import shutil
import socket
import subprocess
import tempfile
import time
import urllib.request
from contextlib import ExitStack, contextmanager
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
AS_ROOT = os.geteuid() == 0


class PostgreSQL:
    """A private server: its socket in `folder`, run by an account that is not root.

    The newest one that Debian has installed, or the one whose programs are in MIREL_POSTGRESQL_BIN.
    """

    def __init__(self, folder):
        self.programs = os.environ.get("MIREL_POSTGRESQL_BIN") or max(
            Path("/usr/lib/postgresql").glob("*/bin"), key=lambda folder: float(folder.parent.name))
        self.folder = folder
        self.account = []
        if AS_ROOT:
            self.account = ["setpriv", "--reuid=postgres", "--regid=postgres", "--clear-groups"]
            shutil.chown(folder, "postgres", "postgres")
        self.folder.chmod(0o755)
        self.run("initdb", "-D", "data", "-U", "admin", "-k", "-E", "UTF8", "--locale=C.UTF-8", "--no-sync",
                 "--auth=peer")
        (self.folder / "data/pg_hba.conf").write_text("local all admin trust\nlocal all all peer\n")
        self.start()

    def command(self, program, *arguments):
        return [*self.account, f"{self.programs}/{program}", *arguments]

    def run(self, program, *arguments):
        subprocess.run(self.command(program, *arguments), cwd=self.folder, check=True, stdout=subprocess.DEVNULL)

    def start(self):
        self.run("pg_ctl", "-D", "data", "-l", "log", "-w", "-o", "-c listen_addresses='' -c fsync=off"
                 f" -c unix_socket_directories={self.folder} -c autovacuum=off -c wal_level=logical"
                 " -c max_wal_senders=7", "start")

    def stop(self):
        return self.command("pg_ctl", "-s", "-D", str(self.folder / "data"), "-m", "immediate", "stop")

    def psql(self, script, *arguments, database="postgres"):
        command = ["psql", "-XqA", "-v", "ON_ERROR_STOP=1", "-h", self.folder, "-U", "admin", "-d", database, "-f", "-"]
        return subprocess.run([*command, *arguments], input=script, check=True, stdout=subprocess.PIPE,
                              encoding="utf-8").stdout


class MariaDB:
    """A private server: its socket in `folder`, run by an account that is not root; `admin` may do everything."""

    def __init__(self, folder):
        self.folder, self.socket = folder, folder / "socket"
        self.account = []
        if AS_ROOT:
            self.account = ["setpriv", "--reuid=mysql", "--regid=mysql", "--clear-groups"]
            shutil.chown(folder, "mysql", "mysql")
        self.folder.chmod(0o755)
        subprocess.run([*self.account, "mariadb-install-db", "--no-defaults", f"--datadir={folder}/data",
                        "--auth-root-authentication-method=normal", "--skip-test-db"],
                       cwd=folder, check=True, stdout=subprocess.DEVNULL)
        self.process = subprocess.Popen(
            [*self.account, "/usr/sbin/mariadbd", "--no-defaults", f"--datadir={folder}/data",
             f"--socket={self.socket}", f"--pid-file={folder}/pid", f"--log-error={folder}/log", "--skip-networking"],
            cwd=folder, stderr=subprocess.DEVNULL)
        while not self.socket.exists():
            assert self.process.poll() is None, "MariaDB did not start"
            time.sleep(0.05)
        self.client("create user admin@localhost; grant all on *.* to admin@localhost with grant option", user="root")
        self.client("drop user root@localhost")

    def stop(self):
        self.process.terminate()
        self.process.wait()

    def client(self, script, *arguments, user="admin"):
        command = ["mariadb", "--no-defaults", f"--socket={self.socket}", f"--user={user}", "--batch",
                   "--default-character-set=utf8mb4"]
        done = subprocess.run([*command, *arguments], input=script, check=False, capture_output=True, encoding="utf-8")
        if done.returncode != 0:
            raise RuntimeError(done.stderr)
        return done.stdout


class Nginx:
    def __init__(self, root, port):
        self.store, self.port, self.template = root / "store", port, root / "template.json"

    def stored(self):
        return {path: path.read_bytes() for path in self.store.rglob("*") if path.is_file()}


@contextmanager
def nginx():
    """The shipped configuration on a free port, as an unprivileged account where we are root."""
    account = {"user": "nobody", "group": "nogroup", "extra_groups": []} if AS_ROOT else {}
    with tempfile.TemporaryDirectory(prefix="mirel-server-") as folder, \
            socket.create_server(("127.0.0.1", 0)) as free:
        root, port = Path(folder), free.getsockname()[1]
        free.close()
        root.chmod(0o755)
        for part in ("store", "run", "log"):
            (root / part).mkdir()
            if account:
                shutil.chown(root / part, "nobody", "nogroup")
        config = (ROOT / "deploy/collection-server/nginx.conf").read_text()
        (root / "nginx.conf").write_text(config.replace("/srv/mirel", folder).replace("8081", str(port)))
        with subprocess.Popen(["nginx", "-c", root / "nginx.conf", "-g", "daemon off;"], **account) as process:
            while not (root / "run/nginx.pid").exists():
                assert process.poll() is None, "nginx did not start"
                time.sleep(0.02)
            try:
                yield Nginx(root, port)
            finally:
                process.terminate()


class ClickHouse:
    """A server on loopback that knows the users default, without a password, and fleet, with "secret"."""

    CONFIG = """<yandex>
      <logger><level>warning</level><log>{folder}/log</log><errorlog>{folder}/errors</errorlog></logger>
      <listen_host>127.0.0.1</listen_host><http_port>{http}</http_port><tcp_port>{tcp}</tcp_port>
      <path>{folder}/data/</path><tmp_path>{folder}/tmp/</tmp_path><user_files_path>{folder}/files/</user_files_path>
      <mark_cache_size>100000000</mark_cache_size><users_config>users.xml</users_config>
      <default_profile>default</default_profile><default_database>default</default_database></yandex>"""
    USERS = """<yandex><profiles><default><max_memory_usage>500000000</max_memory_usage></default></profiles>
      <quotas><default/></quotas><users>
      <default><password/><networks><ip>::/0</ip></networks><profile>default</profile><quota>default</quota></default>
      <fleet><password>secret</password><networks><ip>::/0</ip></networks><profile>default</profile>
      <quota>default</quota></fleet></users></yandex>"""

    def __init__(self, folder, http, tcp, cluster):
        self.folder, self.port = folder, http
        (folder / "config.d").mkdir(parents=True)
        (folder / "config.xml").write_text(self.CONFIG.format(folder=folder, http=http, tcp=tcp))
        (folder / "users.xml").write_text(self.USERS)
        (folder / "config.d/cluster.xml").write_text(cluster)
        self.start()

    def start(self):
        with (self.folder / "output").open("wb") as output:
            self.process = subprocess.Popen(["clickhouse-server", f"--config-file={self.folder}/config.xml"],
                                            stdout=output, stderr=output)
        while True:
            assert self.process.poll() is None, "ClickHouse did not start"
            try:
                return self.ask("SELECT 1")
            except OSError:
                time.sleep(0.05)

    def kill(self):
        self.process.kill()
        self.process.wait()

    def ask(self, statement, database="default"):
        url = f"http://127.0.0.1:{self.port}/?database={database}&wait_end_of_query=1"
        with urllib.request.urlopen(url, statement.encode()) as answer:
            return answer.read().decode()

    def name(self, database):
        return f"clickhouse://127.0.0.1:{self.port}/{database}"


@contextmanager
def clickhouse(folder):
    """Two servers with the shipped configuration of a cluster: they are its shards."""
    with ExitStack() as stack:
        ports = [stack.enter_context(socket.create_server(("127.0.0.1", 0))).getsockname()[1] for _ in range(4)]
    cluster = (ROOT / "deploy/fleet/clickhouse/cluster.xml").read_text()
    for shard in (1, 2):
        cluster = cluster.replace(f"fleet{shard}.example.org", "127.0.0.1").replace(
            "<port>9000<", f"<port>{ports[shard + 1]}<", 1)
    servers = [ClickHouse(folder / str(n), ports[n], ports[n + 2], cluster) for n in (0, 1)]
    try:
        yield servers
    finally:
        for server in servers:
            server.kill()
