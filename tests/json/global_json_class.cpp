// A program that does what the station must not: it has a class of the toolkit's name in the global namespace.
class QJsonObject
{
public:
    virtual ~QJsonObject() = default;
    int count() const;

private:
    int m_count = 0;
};

int QJsonObject::count() const
{
    return m_count;
}

int main()
{
    return QJsonObject().count();
}
